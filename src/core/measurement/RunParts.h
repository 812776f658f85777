#pragma once

#include <memory>
#include <optional>

#include "measurement/KeptPass.h"
#include "measurement/WorkFolder.h"

class Share;

/// What becomes of the rows of an analysis that runs: in a work folder finished parts of them are
/// kept, and taken where they are there; a share of a batch makes its own parts and no results.
/// Without both all rows are worked out and none is kept.
class RunParts {
  public:
    /// Where parts are kept, and taken from; null: nowhere. Not while an analysis runs.
    void setFolder(const std::shared_ptr<WorkFolder>& folder) { m_folder = folder; }
    const std::shared_ptr<WorkFolder>& folder() const { return m_folder; }
    /// From now on only a share of the batch is made, which is not owned; see Share.h.
    void setShare(Share* share) { m_share = share; }
    Share* share() const { return m_share; }  ///< null: all of it

    /// A run begins.
    void begin();
    /// Of a pass over a raster, which is left without rows where a share has nothing to make.
    /// @param columns what each row holds, with the number of values of each column
    KeptRows rowsOf(const KeyedWork& work, int columns, int valuesPerBin, BinRaster* raster);
    /// Whether the pass makes parts of a share only: no results come of it, and the batch ends.
    bool isOfShare() const { return m_shared.has_value(); }
    /// That such a pass works out.
    int rowsToMake() const { return m_shared ? m_shared->rows : 0; }
    /// The pass has ended: its parts are let go of.
    void passEnded();
    /// The run has ended, its last pass made or broken off: what is to be said of its parts.
    Outcome end(bool isMade);

  private:
    struct SharedPass {
        int toMake = 0;  // parts
        int rows = 0;    // of these
        bool ownsAny = false;
    };

    std::shared_ptr<PartStore> storeOf(const KeyedWork& work, int columns, int valuesPerBin);
    void shareOut(KeptRows* rows, BinRaster* raster);

    std::shared_ptr<WorkFolder> m_folder;
    Share* m_share = nullptr;
    std::shared_ptr<PartStore> m_store;  // of the pass that runs
    Outcome m_told;                      // of the run
    std::optional<SharedPass> m_shared;
};
