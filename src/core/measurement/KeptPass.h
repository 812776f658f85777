#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "measurement/PartStore.h"

class AbsorptionSource;

/// Where the rows of a pass are kept, and how.
struct KeptRows {
    std::shared_ptr<PartStore> store;  ///< null: nowhere
    /// What is kept of a row in place of its values; empty: these.
    std::function<const double*(const RasterPass::Row& row)> toKeep = {};
    /// Parts that are made; the rows of others, and of those that are there already, are left out
    /// of the pass. Empty: all rows come, whoever has made them.
    std::function<bool(int part)> onlyMakes = {};
};

/// A RasterPass whose rows come from the files of a work folder as far as they are there: the
/// missing ones are worked out, and kept. Without a folder it is a RasterPass.
class KeptPass {
  public:
    struct Row {
        RasterPass::Row row;
        bool isKept = false;  ///< its values are those that were kept
    };

    /// Arguments as for a RasterPass. ready is called in any case.
    KeptPass(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
             std::vector<RasterPass::Evaluate> evaluators, std::function<void()> ready,
             const KeptRows& rows);

    /// The next row, as from RasterPass::tryTake().
    Row tryTake(bool* pending);
    RasterPass::Failure failure() const {
        return m_pass ? m_pass->failure() : RasterPass::Failure::None;
    }
    /// See RasterPass::problem().
    QString problem() const { return m_pass ? m_pass->problem() : QString(); }
    /// All rows have been taken: waits until they are kept.
    void finish();
    const BinRaster& raster() const { return m_raster; }

  private:
    bool goOn();
    bool isLeftOut(int part) const;
    int endOfMissing(int part) const;
    void keep(const RasterPass::Row& row);

    const AbsorptionSource& m_source;
    const BinRaster m_raster;
    const int m_valuesPerBin;
    const std::vector<RasterPass::Evaluate> m_evaluators;
    const std::function<void()> m_ready;
    KeptRows m_rows;

    int m_next = 0;              // row
    std::optional<Part> m_part;  // that rows are taken from
    std::optional<Part> m_made;  // that rows are added to
    int m_passEnd = 0;           // of m_pass
    std::unique_ptr<RasterPass> m_pass;
};
