#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "absorption/RasterPass.h"

/// Rows of bins that have been worked out, as they lie in a file of the work folder; see
/// docs/file-formats.md.
class Part {
  public:
    /// What a part's file must say of itself.
    struct Form {
        QByteArray key;  ///< 32 bytes: the digest of what its rows are made from
        RasterPass::Rows rows;
        int columns = 0;
        int valuesPerBin = 0;

        std::size_t valuesPerRow() const {
            return static_cast<std::size_t>(columns) * static_cast<std::size_t>(valuesPerBin);
        }
    };

    explicit Part(const Form& form) : m_form(form) {}

    const Form& form() const { return m_form; }
    bool isFull() const { return next() == m_form.rows.end; }
    /// The row that is to be added next.
    int next() const { return m_form.rows.first + static_cast<int>(m_tallies.size()); }
    /// Appends a row's values, which need not be row.values, with what else the row says.
    void add(const RasterPass::Row& row, const double* values);
    /// A row of it, for as long as it lives.
    RasterPass::Row row(int row) const;

    /// Writes it whole or not at all; empty, else why not.
    QString write(const QString& fileName) const;

    enum class Fault { None, Missing, Damaged };
    /// The part that a file holds; nothing, with *fault, where it does not hold all of a part of
    /// this form.
    static std::optional<Part> read(const QString& fileName, const Form& form, Fault* fault);

  private:
    std::vector<char> rest() const;
    bool takeRest(const std::vector<char>& bytes);

    Form m_form;
    std::vector<double> m_values;
    std::vector<RasterPass::Tally> m_tallies;                     // of each row
    std::vector<std::vector<RasterPass::Saturated>> m_saturated;  // of each row
};
