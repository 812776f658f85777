#pragma once

#include <QSize>
#include <QString>
#include <QVector>
#include <optional>
#include <vector>

class Analyzed2DRes;

// Writers of result images. Each returns whether the file was written, and says so in
// one debug line with its name. A writer that fails stays silent and leaves an existing file of
// that name as it was.

/// How a result becomes 16-bit counts, see Analyzed2DRes::tiffDataForSave().
struct TiffOptions {
    bool fixedScale = false;  ///< scaleMin..scaleMax become 0..65535, not the result's own range
    double scaleMin = 0.0;
    double scaleMax = 1.0;
    bool asAnalyzed = false;  ///< one pixel per analysed point instead of one per image pixel

    bool operator==(const TiffOptions& o) const {
        return fixedScale == o.fixedScale && scaleMin == o.scaleMin && scaleMax == o.scaleMax &&
               asAnalyzed == o.asAnalyzed;
    }
};

/// How a result becomes text.
struct TableOptions {
    enum class Separator { Comma, Blank };
    enum class Layout {
        Points,  ///< "x y value", one point a line
        Rows     ///< the values of one image row a line
    };
    Separator separator = Separator::Comma;
    Layout layout = Layout::Points;
    bool asAnalyzed = false;  ///< the analysed points (bin centres) instead of every image pixel

    bool operator==(const TableOptions& o) const {
        return separator == o.separator && layout == o.layout && asAnalyzed == o.asAnalyzed;
    }
};

/// "# name = value" above a table.
struct HeaderLine {
    QString name;
    QString value;
};

/// Writes the shown values of @p result (processed ones while it shows them) as a 16-bit TIFF of
/// the image's size, or of grid columns x grid rows when as analysed. A result without values
/// writes nothing. The text of its @p origin goes into the file's description.
bool writeResultTiff(const QString& fileName, const Analyzed2DRes& result,
                     const TiffOptions& options, const QString& origin = {});

/// The counts from 0 to 65535 that such a file has for the middle 90 % of the finite values of the
/// bins, ends not included; nothing where these are all one value.
std::optional<int> stepsInTiff(const Analyzed2DRes& result, const TiffOptions& options);

/// What 0 and 65535 counts mean in such a file.
struct TiffRange {
    double low = 0.0;
    double high = 0.0;
};
TiffRange rangeInTiff(const Analyzed2DRes& result, const TiffOptions& options);

/// Writes the shown values of @p result as a TIFF of 32-bit floats, whatever the image's shape: the
/// nearest float to each value, NaN where there is no number, no scale. Sizes, origin and a result
/// without values as with writeResultTiff().
bool writeResultFloat(const QString& fileName, const Analyzed2DRes& result, bool asAnalyzed,
                      const QString& origin = {});

/// Writes the shown values of @p result as a text table in UTF-8: the @p header lines, then the
/// geometry and the range of the values, also as "# name = value", then the data with nine
/// significant digits, a dot as decimal sign and "nan" where there is no number. Whatever the fixed
/// scale, the values are written as they are. A result without values writes nothing. The lines of
/// the @p origin, each after "# " (an empty one: "#"), stand between head and data.
bool writeResultTable(const QString& fileName, const Analyzed2DRes& result,
                      const TableOptions& options, const QVector<HeaderLine>& header,
                      const QString& origin = {});
