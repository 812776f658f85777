#pragma once

#include <QIODevice>
#include <QString>
#include <memory>
#include <vector>

class QTextStream;
class WholeFile;

/// A WholeFile for a writer through Qt, at its placeOf(). It can be written only, anywhere in it.
/// Once a byte cannot be written nothing more succeeds, whatever the writer makes of it: what is
/// put in place is whole. Without putInPlace() nothing changes.
class WholeDevice : public QIODevice {
  public:
    explicit WholeDevice(QString fileName);
    ~WholeDevice() override;

    const QString& fileName() const { return m_fileName; }
    /// False for what cannot be replaced or made.
    bool open(OpenMode mode = WriteOnly) override;
    /// Without putInPlace() before, removes what was written.
    void close() override;
    bool isSequential() const override { return false; }
    qint64 size() const override;
    bool seek(qint64 place) override;

    /// Closes it and puts it in place, synced, unless any of it could not be written.
    bool putInPlace();
    /// The same with what the text stream still holds.
    bool putInPlace(QTextStream& text);

  protected:
    qint64 readData(char* data, qint64 size) override;
    qint64 writeData(const char* data, qint64 size) override;

  private:
    bool flush();

    QString m_fileName;
    std::unique_ptr<WholeFile> m_file;
    std::vector<char> m_buffer;
};
