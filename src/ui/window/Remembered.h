#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>

/// Recent names and the folders of file dialogs, from start to start, in the platform's settings
/// store (organization "Haldmoor Lab", application "Tarnwick"). Nothing of a measurement. While it
/// is not kept the store is neither read nor written: what is noted holds for this start alone.
class Remembered : public QObject {
    Q_OBJECT

  public:
    static constexpr int MostRecent = 8;

    /// The one of the program.
    static Remembered& shared();

    /// Takes what the last start has left and writes from now on.
    void keep();
    /// The last names under a key, the newest first.
    QStringList recent(const QString& key) const { return m_recent.value(key); }
    /// Puts a file or folder in front.
    void note(const QString& key, const QString& path);
    void forget(const QString& key, const QString& path);

    static QString folders() { return QStringLiteral("recent folders"); }
    static QString records() { return QStringLiteral("recent records"); }

  signals:
    void changed();

  private:
    Remembered();
    void set(const QString& key, const QStringList& paths);
    void writeFolders() const;

    bool m_keeps = false;
    QMap<QString, QStringList> m_recent;
};
