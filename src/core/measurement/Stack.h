#pragma once

#include <QObject>
#include <QSize>
#include <QVector>
#include <algorithm>

#include "frames/LoadTiff.h"
#include "frames/StackLoader.h"
#include "measurement/Outcome.h"
#include "measurement/Settings.h"

enum class StackId { I0 = 0, I1 = 1 };

/// The energy (eV) of the file that is number `before` of its stack, from 0: the number in its
/// name, else its own number less one, times the unit. Says so in two debug lines.
double frameEnergy(const QString& fileName, const NamePattern& names, int before);

class Rehearsal;

/// One stack of frames in order of arrival, and who reads them. It takes no file that
/// holds anything but 16-bit counts, none of another size than its first frame, and none without an
/// energy in its name where others have one.
class Stack : public QObject {
    Q_OBJECT

  public:
    /// A frame's file and how its energy was found.
    struct File {
        QString path;  ///< absolute
        double energy;
        NamePattern names;
        bool isNumbered = false;  ///< no energy in the name: its number stands for it
        FileStamp stamp;          ///< when it was read
    };

    explicit Stack(StackId id);

    StackId id() const { return m_id; }
    /// "I1" or "I0".
    QString name() const;
    /// Frames come by their headers alone, see Measurement::rehearse().
    void rehearse(const Rehearsal* rehearsal);
    /// Frames come by their headers, see Measurement::readCountsWhenNeeded().
    void readCountsWhenNeeded() { m_reader.readCountsWhenNeeded(); }
    /// There are frames, and their counts are read when they are needed.
    bool isInFiles() const;
    /// For the files that are asked for from now on.
    void setNames(const NamePattern& names) { m_names = names; }

    /// Deletes every frame and empties the queue.
    void clear();
    /// Queues the files and starts reading; finished() follows, at once for no file.
    void read(const QStringList& files);
    /// Leaves out the files that are still to be read.
    void stop();

    bool isLoading() const { return m_loader.isLoading(); }
    int done() const { return m_loader.done(); }
    int total() const { return m_loader.total(); }
    int size() const { return m_loader.frames().size(); }
    FrameSet& frames() { return m_loader.frames(); }
    const FrameSet& frames() const { return m_loader.frames(); }
    /// One a frame, in their order.
    const QVector<File>& files() const { return m_files; }
    /// Another whenever the frames are others.
    quint64 revision() const { return m_revision; }
    /// Of the first frame, in pixels; -1 x -1 without.
    QSize imageSize() const;
    /// How the load went since the last call: each file that was left out with the reason, and what
    /// somebody should know of the frames; a failure also when none was taken of those asked for.
    Outcome takeOutcome();
    /// How many files the load of the last takeOutcome() did not take.
    int leftOut() const { return m_refused; }
    /// How many files are still to be read.
    int toCome() const { return total() - done(); }
    /// How many frames there were before the last load.
    int firstNew() const { return std::min(m_before, size()); }

  public slots:
    /// Gives the reader its next file; finished() when there is none and none is under way.
    void loadNext();
    /// The reader has come back with a frame.
    void loaded(TiffData* data);

  signals:
    void load(QString fname, TiffData* data);
    /// The frames are about to become others: who reads them must stop.
    void changing();
    void changed();
    /// A file has been read or refused.
    void progressed();
    void finished();

  private:
    bool request();
    QStringList withEnergies(const QStringList& files);
    void leaveOut(const QString& fileName, const QString& why);

    StackId m_id;
    const Rehearsal* m_rehearsal = nullptr;
    NamePattern m_names;
    NamePattern m_loadNames;  // of the load under way
    StackLoader m_loader{2};
    QVector<File> m_files;
    quint64 m_revision = 0;
    int m_before = 0;         // frames before the load under way
    bool m_asked = false;     // for any file by it
    bool m_energies = false;  // some of its names, or of those before, have one
    QStringList m_leftOut;
    int m_refused = 0;
    LoadTiff m_reader;
};
