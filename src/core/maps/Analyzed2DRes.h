#pragma once

#include <QObject>
#include <QRect>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "maps/AnalysisGrid.h"
#include "maps/Deglitch.h"
#include "maps/MapValues.h"
#include "maps/Mask.h"

class QImage;

/// One result image of an analysis: a width x height array of values that the analysis fills point
/// by point, a second one for processed values (deglitched, or the glitch measure), and the
/// picture of either through the colour map.
///
/// Both arrays and the picture exist from clear() and genImg() on as far as anybody can see, but
/// take memory only when they are needed: processed values that are those of the analysis, or not
/// yet any, and a picture that nobody looks at cost nothing.
class Analyzed2DRes : public QObject {
    Q_OBJECT

  public:
    explicit Analyzed2DRes(QObject* parent = nullptr);
    ~Analyzed2DRes() override;

    /// Geometry for the next clear(), which allocates the arrays.
    void setGrid(const AnalysisGrid& grid) { m_grid = grid; }
    /// An image of zeros for a new run over a grid, of no numbers over one with inner points; the
    /// processed values of the old run, now gone, are not what it shows.
    void startOver(const AnalysisGrid& grid);
    /// The same value in all pixels, which counts for nothing.
    void fill(double value);
    const AnalysisGrid& grid() const { return m_grid; }

    /// Whether the picture is up to date with a filled image; false from clear() to genImg().
    bool isValid() const { return m_valid; }
    bool hasData() const { return !m_data.isEmpty(); }

    /// Value of a pixel (row by row in data and proc), 0.0 outside the image.
    double valueAt(qint64 x, qint64 y) const { return at(m_data, x, y); }
    double shownValueAt(qint64 x, qint64 y) const { return at(shownArray(), x, y); }
    const double* data() const { return m_data.constData(); }
    MapValues values() const { return m_data; }  ///< as they are now, row by row
    /// Those shown, no number where they are masked, row by row.
    MapValues visibleValues() const;
    double visibleValueAt(qint64 x, qint64 y) const;
    const double* proc() const { return procArray().constData(); }
    const double* shown() const { return shownArray().constData(); }
    /// The pixels of the bins whose values have been set since clear(), as rows of bins come one
    /// after another; what lies beside them holds 0.
    QRect filled() const;

    /// Pixels that show no number and do not count for the range in use. Gone with startOver().
    void setMask(const Mask& mask);
    /// Pictures show pixels that are no number in mid grey, as they always do with a mask or over a
    /// grid with inner points; else in the colour of the lower end.
    void markGaps() { m_marksGaps = true; }
    bool showsGaps() const { return m_marksGaps || m_mask || m_grid.inside; }
    bool isMasked() const { return m_mask != nullptr; }
    const Mask& mask() const { return m_mask; }
    bool isMaskedAt(qint64 x, qint64 y) const {
        return m_mask && m_grid.isInsideImage(x, y) &&
               (*m_mask)[static_cast<std::size_t>(y * m_grid.width + x)] != 0;
    }
    /// Bins that robustRange() leaves out; null: none. Gone with startOver().
    void setNoise(const Mask& noise);
    /// Takes the values that another shows, no number where it is masked.
    void takeVisible(const Analyzed2DRes& other);

    // Ranges of the finite values; dataMin > dataMax until a value is set.
    double dataMin() const { return m_dataMin; }
    double dataMax() const { return m_dataMax; }
    double procMin() const { return m_procMin; }
    double procMax() const { return m_procMax; }
    /// The range in use: the fixed scale, else that of the array shown as far as it is not masked.
    double rangeMin() const;
    double rangeMax() const;
    /// The percentiles 1 and 99 of the finite values of the bins filled that are neither masked nor
    /// noise: of n values in order those that have round(0.01 (n - 1)) others below and above them.
    /// Of noise, too, where there is nothing else. The range in use where both are equal or there
    /// are none. As of the last genImg(); of some hundred rows while values are still coming in.
    std::pair<double, double> robustRange(int threads = 1) const;
    bool showsProc() const { return m_showProc; }
    bool isFixedScale() const { return m_fixedScale; }
    /// Number of values written by the last tiffDataForSave().
    int count() const { return m_count; }

    /// `count` values of tiffDataForSave() from number `first` on. There are values.
    void fillTiffData(bool fixedScale, double scaleMin, double scaleMax, bool asAnalyzed,
                      quint64 first, std::size_t count, quint16* to) const;

    void setProcRange(double min, double max);
    /// What the deglitchers work on, which may go on on another thread, and what they have made.
    MapToProcess toProcess() const;
    void takeProcessed(const Processed& made);
    /// genImg() for values that are still coming in: until the next genImg() or clear() the picture
    /// is that of the values as they were when it was last looked at or followed up, and keeps
    /// none of them.
    void followUp();
    /// dataMin and dataMax over all pixels that are finite.
    void updateExtremes();

    /// setData() for bins side by side: of `count` bins around (x, y), (x + step, y), ... bin i
    /// takes values[i * stride].
    void setRow(int x, int step, int y, int xw, int yw, const double* values, std::ptrdiff_t stride,
                int count);

  public slots:
    /// Frees picture and arrays, allocates arrays of zeros for the grid's size, resets the ranges.
    void clear();
    void setNo(int no);
    int no() const;
    /// Sets the value over the bin of half-width xw and half-height yw around (ix, iy), clipped to
    /// the image, and widens the range with it.
    void setData(int ix, int iy, int xw, int yw, double t);
    void genImg();
    /// The picture as of the last genImg(), whatever has been set since; null before.
    QImage* img() const;
    /// The shown values as 16 bit: (value - min) / (max - min) x 65535, cut to an integer whose low
    /// 16 bits are kept; what is not a number is 0. min and max are the arguments with fixedScale,
    /// else the range of the array shown. asAnalyzed: one value a point in grid order, clamped to
    /// the range, instead of one a pixel; count() tells how many. The caller frees the array with
    /// delete[]; null without values.
    quint16* tiffDataForSave(bool fixedScale, double scaleMin, double scaleMax, bool asAnalyzed);
    /// deglitched() into proc.
    void deglitch();
    void setDeglitchConds(double f, double r);
    void selectProcImg(bool on);
    /// smoothed() into proc.
    void deglitch2(double limit);
    void copyProc2Data();
    void setFixedScale(bool on);
    void setScale(double min, double max);

  private:
    using Array = MapValues;

    struct Range {
        double min;
        double max;
    };

    /// What a picture is to show.
    struct Picture {
        Array values;
        int width;
        int height;
        std::optional<Range> range;  ///< none: that of what is not masked
        bool marksGaps;
    };

    const Array& procArray() const;
    const Array& shownArray() const { return m_showProc ? procArray() : m_data; }
    void paint(const Picture& picture) const;
    void paintRows(const Picture& picture, const Range& range, int first, int end) const;
    void wrapPixels(int width, int height) const;
    Picture pictureOfNow() const;
    void touch(qint64 first, qint64 last);
    double at(const Array& array, qint64 x, qint64 y) const;
    bool isBlank(std::size_t pixel) const {
        return m_mask && pixel < m_mask->size() && (*m_mask)[pixel] != 0;
    }
    Range visibleExtremes() const;
    Range rangeInUse() const;
    void dropPicture();

    int m_no = -1;
    AnalysisGrid m_grid;
    bool m_valid = false;
    mutable std::optional<Picture> m_toPaint;
    mutable std::vector<uchar> m_pixels;
    mutable std::unique_ptr<QImage> m_image;
    bool m_follows = false;           // the picture is of values that are still coming in
    mutable Range m_painted{0., 0.};  // the range of a picture that follows
    mutable qint64 m_firstNew = 0;    // rows that it lacks
    mutable qint64 m_endNew = 0;
    Array m_data;
    double m_dataMin = 1e300;
    double m_dataMax = -1e300;
    bool m_fixedScale = false;
    double m_scaleMin = 0.0;
    double m_scaleMax = 1.0;
    int m_count = 0;
    double m_procMin = 0.0;
    double m_procMax = 1.0;
    mutable Array m_proc;  // empty: zeros, as many as values
    double m_deglitchFactor = 2.0;
    double m_deglitchRatio = 0.1;
    bool m_showProc = false;
    Mask m_mask;
    Mask m_noise;
    bool m_marksGaps = false;
    mutable std::optional<Range> m_visibleRange;  // while there is a mask, once it is asked for
    mutable std::optional<std::pair<double, double>> m_robustRange;  // once it is asked for
    int m_lastRow = -1;                                              // that has been filled
};
