#include "files/Hdf5File.h"

#include <dlfcn.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>

#include "base/LargeMemory.h"
#include "files/Hdf5Library.h"
#include "files/InputFile.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

/// Where the module is, seen from the folder of the program: installed, in a folder with the name
/// of the program, and in a build.
void* openModule() {
    const QFileInfo program(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath());
    for (const QString& folder :
         {QStringLiteral(TARNWICK_LIBRARIES "/%1/modules").arg(program.fileName()),
          QStringLiteral("../modules"), QStringLiteral("../../modules")}) {
        const QString path = QDir::cleanPath(program.path() + QLatin1Char('/') + folder) +
                             QStringLiteral("/tarnwick_hdf5.so");
        if (QFileInfo::exists(path)) {
            return dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
        }
    }
    return nullptr;
}

/// Addresses that the module takes, with the libraries that it brings along.
constexpr quint64 ModuleBytes = quint64(32) << 20;

/// Loaded once. Null: it is missing. Throws NotEnoughMemory.
const Hdf5Library* library() {
    static const Hdf5Library* const loaded = []() -> const Hdf5Library* {
        askForMemory(ModuleBytes);
        void* const module = openModule();
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
        WholeDevice file(fileName);
        return size > 0 && file.open() && file.write(bytes, size) == size && file.putInPlace() &&
               noteSaved(fileName);
    });
}

bool canUseHdf5() {
    return library() != nullptr;
}

bool isHdf5(const QByteArray& start) {
    return start.startsWith("\x89HDF\r\n\x1a\n");
}

std::optional<QString> hdf5Text(const QString& fileName, const QString& path, qint64 mostBytes) {
    const int file = openInput(QFile::encodeName(fileName));
    if (file < 0) {
        return std::nullopt;
    }
    // The library opens by name: that of what has been opened, whatever has the other one now.
    const QString opened = QStringLiteral("/proc/self/fd/%1").arg(file);
    const auto text =
        library() != nullptr ? library()->text(opened, path, mostBytes) : std::nullopt;
    ::close(file);
    return text;
}
