#pragma once

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// What Hdf5File.h needs of the HDF5 library. It lives in a module of its own that is loaded when
/// it is first asked for: the library brings thirty others with it, for which every start of the
/// programs would pay. The module knows no file of ours but this one.
class Hdf5Library {
  public:
    /// A file in memory; see Hdf5Writer.
    class Writer {
      public:
        virtual ~Writer() = default;
        virtual void group(const QString& path) = 0;
        virtual void attribute(const QString& path, const char* name, const QString& value) = 0;
        virtual void attribute(const QString& path, const char* name,
                               const QStringList& values) = 0;
        virtual void attribute(const QString& path, const char* name, int value) = 0;
        virtual void number(const QString& path, int value) = 0;
        virtual void text(const QString& path, const QString& value) = 0;
        virtual void array(const QString& path, const std::vector<double>& values,
                           const QVector<int>& extents) = 0;
        virtual void array(const QString& path, const std::vector<quint8>& values,
                           const QVector<int>& extents) = 0;
        /// Hands over the bytes of the finished file; false where anything failed before.
        virtual bool finish(const std::function<bool(const char* bytes, qint64 size)>& take) = 0;
    };

    virtual ~Hdf5Library() = default;
    virtual std::unique_ptr<Writer> makeWriter() const = 0;
    /// See hdf5Text().
    virtual std::optional<QString> text(const QString& fileName, const QString& path,
                                        qint64 mostBytes) const = 0;
};

/// The one function of the module, and its type.
extern "C" Q_DECL_EXPORT const Hdf5Library* tarnwickHdf5Library();
using Hdf5LibraryOf = const Hdf5Library* (*)();
