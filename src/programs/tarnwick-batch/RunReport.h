#pragma once

#include <QJsonObject>
#include <QString>

#include "files/WholeDevice.h"

/// Writes what a run did as a JSON array of objects, one a line of text: it grows on disk, not in
/// memory, and takes the place of an older file as a whole when it is closed.
class RunReport {
  public:
    /// A report of that name. Nothing is there before close().
    explicit RunReport(const QString& fileName) : m_file(fileName) {}

    /// Whether it can be written at all; to be called first.
    bool open();
    void add(const QJsonObject& entry);
    /// Ends the array and puts the file in place. False where any of it could not be written.
    bool close();
    QString fileName() const { return m_file.fileName(); }

  private:
    WholeDevice m_file;
    bool m_isEmpty = true;
};
