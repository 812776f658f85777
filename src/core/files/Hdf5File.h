#pragma once

#include <QString>
#include <QStringList>
#include <QVector>
#include <memory>
#include <optional>
#include <vector>

// HDF5 files. Only Hdf5Library.cpp knows the library, which prints nothing of its own and is loaded
// when it is first needed. To be used from one thread at a time.

/// Why nothing is written or read: its module is not there, cannot be loaded (with the system's
/// reason), or is held by the reading of a file that has been given up. Empty: it can be used.
QString whyNoHdf5();

/// Makes a HDF5 file in memory and writes it whole or not at all. Paths begin with "/"; the groups
/// above an object are made first. The same calls give the same bytes: no times, no names of files.
/// Objects have checked heads, as all readers since HDF5 1.8 know them. What fails once makes
/// save() fail.
class Hdf5Writer {
  public:
    Hdf5Writer();
    ~Hdf5Writer();
    Hdf5Writer(const Hdf5Writer&) = delete;
    Hdf5Writer& operator=(const Hdf5Writer&) = delete;

    void group(const QString& path);
    /// Text in UTF-8 of variable length, which h5py reads into a str; nothing for an empty list.
    void attribute(const QString& path, const char* name, const QString& value);
    void attribute(const QString& path, const char* name, const QStringList& values);
    void attribute(const QString& path, const char* name, int value);
    /// A scalar of 32 bits.
    void number(const QString& path, int value);
    /// A scalar text in UTF-8 with the length of its bytes (at least one).
    void text(const QString& path, const QString& value);
    /// An array of the given extents, the last one running fastest, which hold as many values: in
    /// compressed blocks of up to 256 x 256. Doubles with all their bits.
    void array(const QString& path, const std::vector<double>& values, const QVector<int>& extents);
    void array(const QString& path, const std::vector<quint8>& values, const QVector<int>& extents);

    /// False, with the old file as it was, where anything failed or it cannot be written.
    bool save(const QString& fileName);

  private:
    struct File;
    std::unique_ptr<File> m_file;
};

/// Whether a file that begins so is one of HDF5.
bool isHdf5(const QByteArray& start);

/// A text as Hdf5Writer::text() writes it. Empty where there is no such text of at most that many
/// bytes in the file itself: no other file is opened. Nothing for a file that is none or is
/// damaged.
std::optional<QString> hdf5Text(const QString& fileName, const QString& path, qint64 mostBytes);
