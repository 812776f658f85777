#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <vector>

#include "files/FileState.h"

// What a measurement is read from is a file: a folder, pipe, socket or device is never opened, for
// who reads one may wait for ever. What was looked at is what is read, whatever takes its name.

/// Opens a file to read by its name in the file system. A descriptor that the caller closes; -1:
/// errno says why, EISDIR for whatever is no file.
int openInput(const QByteArray& path);

/// "no such file", "not a file", or what the system says of an errno of openInput().
QString whyNotOpened(int error);

/// Such a file for readers that go through Qt.
class InputFile : public QFile {
  public:
    using QFile::QFile;

    /// Only to read. On failure whyNot() says why.
    bool open(OpenMode mode) override;
    /// The first of these names in the file system that can be opened.
    bool openAt(const std::vector<QByteArray>& paths, OpenMode mode);
    QString fileName() const override;
    QString whyNot() const { return whyNotOpened(m_error); }
    /// Of one that was not opened: there is nothing of that name, or it is no file.
    bool isMissing() const;
    bool isNoFile() const;
    /// Whether somebody has written to the file, or cut it, since it was opened.
    bool hasChanged() const;
    static QString changedText();

  private:
    QString m_name;  // which a file forgets that is opened by its descriptor
    FileState m_opened;
    int m_error = 0;
};
