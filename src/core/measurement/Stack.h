#pragma once

#include <QObject>
#include <QThread>
#include <QVector>

#include "frames/LoadTiff.h"
#include "frames/StackLoader.h"
#include "measurement/Settings.h"

enum class StackId { I0 = 0, I1 = 1 };

/// The energy (eV) of the file that is number `before` of its stack, from 0: the number in its
/// name, else its own number less one, times the unit. Says so in two debug lines.
double frameEnergy(const QString& fileName, const NamePattern& names, int before);

/// One stack of frames in order of arrival, with the thread that reads them.
class Stack : public QObject {
    Q_OBJECT

  public:
    /// A frame's file and how its energy was found.
    struct File {
        QString path;  ///< absolute
        double energy;
        NamePattern names;
    };

    explicit Stack(StackId id);
    /// Waits for the frame that is being read.
    ~Stack() override;

    StackId id() const { return m_id; }
    /// "I1" or "I0".
    QString name() const;
    /// For the files that arrive from now on.
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
    /// Names of the files that could not be read since the last call.
    QStringList takeFailures() { return m_loader.takeFailures(); }

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

    StackId m_id;
    NamePattern m_names;
    StackLoader m_loader{2};
    QVector<File> m_files;
    quint64 m_revision = 0;
    QThread m_thread;
    LoadTiff m_reader;
};
