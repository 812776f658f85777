#pragma once

#include <QObject>
#include <functional>

#include "frames/DarkFrame.h"
#include "frames/LoadTiff.h"
#include "frames/StackLoader.h"

/// The dark frames of a measurement: reads them in a thread of its own and holds their mean.
///
/// Frames of another size than the images are refused with a debug line each. Frames that came
/// before the images and turn out to be of another size stay unused, which is said once.
class DarkData : public QObject {
    Q_OBJECT

  public:
    DarkData();

    /// Tells of a frame what its file cannot, or nothing.
    using Describe = std::function<void(const QString& fileName, TiffData* frame)>;
    /// Frames come by their headers alone and have no mean.
    void readHeadersOnly(const Describe& describe);
    /// Counts are read when the mean is asked for.
    void readCountsWhenNeeded();
    /// Size of the images; -1 while there are none.
    void setImageSize(int width, int height);

    /// Reads these files; from the end of the reading they stand for the frames before them.
    void replace(const QStringList& files);
    void clear();

    bool isLoading() const { return m_loader.isLoading(); }
    int filesLeft() const { return m_loader.total() - m_loader.done(); }
    int filesDone() const { return m_loader.done(); }
    int loaded() const { return m_loader.frames().size(); }
    /// How many of the loaded frames have the images' size; all of them while there are no images.
    int fitting() const;
    /// Absolute paths of the frames that went into the mean, or will.
    QStringList files() const;
    QVector<FileStamp> fileStamps() const;  ///< of these, just before they were read
    /// Files of the last reading that could not be read or were refused.
    int refused() const { return m_refused.size(); }
    /// These with the reason of each.
    const QVector<StackLoader::Refused>& refusals() const { return m_refused; }

    /// What should be known of the loaded frames, each after its name.
    QStringList remarks() const;

    /// Mean of the fitting frames as of the last changed(), null when there is none of the images'
    /// size. Valid until the next call.
    const DarkFrame* mean();
    /// Why it was null although there are fitting frames: names the file that could not be read.
    const QString& problem() const { return m_mean.problem(); }

  signals:
    /// mean() is another one.
    void changed();
    /// A frame has arrived or was refused.
    void progressed();
    void load(QString fname, TiffData* data);

  private:
    void loadNext();
    void arrived(TiffData* data);
    bool isRefused(const TiffData& frame) const;
    void changeMean();

    StackLoader m_loader;
    LoadTiff m_reader;
    Describe m_describe;
    int m_imageWidth = -1;
    int m_imageHeight = -1;
    QVector<StackLoader::Refused> m_refused;
    bool m_saidUnused = false;
    bool m_meanIsStale = false;
    DarkFrame m_mean;
};
