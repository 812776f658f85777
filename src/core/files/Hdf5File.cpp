#include "files/Hdf5File.h"

#include <dlfcn.h>

#include <QSaveFile>

#include "files/Hdf5Library.h"
#include "files/WholeFile.h"

namespace {

/// Loaded once, from the folder that the programs were linked to look into. Null: it is missing.
const Hdf5Library* library() {
    static const Hdf5Library* const loaded = []() -> const Hdf5Library* {
        void* const module = dlopen(TARNWICK_HDF5_MODULE, RTLD_NOW | RTLD_LOCAL);
        void* const symbol = module != nullptr ? dlsym(module, "tarnwickHdf5Library") : nullptr;
        return symbol != nullptr ? reinterpret_cast<Hdf5LibraryOf>(symbol)() : nullptr;
    }();
    return loaded;
}

}  // namespace

struct Hdf5Writer::File {
    std::unique_ptr<Hdf5Library::Writer> made = library() ? library()->makeWriter() : nullptr;

    template <typename Function>
    void with(Function use) {
        if (made) {
            use(*made);
        }
    }
};

Hdf5Writer::Hdf5Writer() : m_file(std::make_unique<File>()) {}

Hdf5Writer::~Hdf5Writer() = default;

void Hdf5Writer::group(const QString& path) {
    m_file->with([&](auto& file) { file.group(path); });
}

void Hdf5Writer::attribute(const QString& path, const char* name, const QString& value) {
    m_file->with([&](auto& file) { file.attribute(path, name, value); });
}

void Hdf5Writer::attribute(const QString& path, const char* name, const QStringList& values) {
    m_file->with([&](auto& file) { file.attribute(path, name, values); });
}

void Hdf5Writer::attribute(const QString& path, const char* name, int value) {
    m_file->with([&](auto& file) { file.attribute(path, name, value); });
}

void Hdf5Writer::number(const QString& path, int value) {
    m_file->with([&](auto& file) { file.number(path, value); });
}

void Hdf5Writer::text(const QString& path, const QString& value) {
    m_file->with([&](auto& file) { file.text(path, value); });
}

void Hdf5Writer::array(const QString& path, const std::vector<double>& values,
                       const QVector<int>& extents) {
    m_file->with([&](auto& file) { file.array(path, values, extents); });
}

void Hdf5Writer::array(const QString& path, const std::vector<quint8>& values,
                       const QVector<int>& extents) {
    m_file->with([&](auto& file) { file.array(path, values, extents); });
}

bool Hdf5Writer::save(const QString& fileName) {
    // By our own hands: the library cannot be rid of a file that it fails to finish.
    return m_file->made && m_file->made->finish([&](const char* bytes, qint64 size) {
        QSaveFile file(fileName);
        return size > 0 && openBeside(file) && file.write(bytes, size) == size && putInPlace(file);
    });
}

bool canUseHdf5() {
    return library() != nullptr;
}

bool isHdf5(const QByteArray& start) {
    return start.startsWith("\x89HDF\r\n\x1a\n");
}

std::optional<QString> hdf5Text(const QString& fileName, const QString& path, qint64 mostBytes) {
    return library() != nullptr ? library()->text(fileName, path, mostBytes) : std::nullopt;
}
