#include "files/Hdf5File.h"

#include <dlfcn.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <atomic>
#include <mutex>

#include "base/LargeMemory.h"
#include "files/Hdf5Library.h"
#include "files/InputFile.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SavingResults)
};

/// Where the module is, seen from the folder of the program: installed, in a folder with the name
/// of the program, and in a build. Empty: nowhere.
QString modulePath() {
    const QFileInfo program(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath());
    for (const QString& folder :
         {QStringLiteral(TARNWICK_LIBRARIES "/%1/modules").arg(program.fileName()),
          QStringLiteral("../modules"), QStringLiteral("../../modules")}) {
        const QString path = QDir::cleanPath(program.path() + QLatin1Char('/') + folder) +
                             QStringLiteral("/tarnwick_hdf5.so");
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    return QString();
}

/// Addresses that the module takes, with the libraries that it brings along.
constexpr quint64 ModuleBytes = quint64(32) << 20;

/// Null: *whyNot says why. Throws NotEnoughMemory.
const Hdf5Library* load(QString* whyNot) {
    askForMemory(ModuleBytes);
    const QString path = modulePath();
    if (path.isEmpty()) {
        *whyNot = Texts::tr("this program was installed without its module for HDF5 files");
        return nullptr;
    }
    void* const module = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = module != nullptr ? dlsym(module, "tarnwickHdf5Library") : nullptr;
    if (symbol == nullptr) {
        *whyNot = Texts::tr("the module for HDF5 files cannot be loaded: %1")
                      .arg(QString::fromLocal8Bit(dlerror()));
        return nullptr;
    }
    return reinterpret_cast<Hdf5LibraryOf>(symbol)();
}

/// A text is being read: the library is not to be asked for anything else.
std::atomic<bool> isReading{false};

/// Loaded once. Null: *whyNot says why. Throws NotEnoughMemory.
const Hdf5Library* library(QString* whyNot = nullptr) {
    static std::mutex mutex;
    static const Hdf5Library* loaded = nullptr;
    const std::lock_guard<std::mutex> lock(mutex);
    QString why;
    if (isReading) {
        why = Texts::tr("a file that does not answer is still being read");
    } else if (loaded == nullptr) {
        loaded = load(&why);
    }
    if (whyNot != nullptr) {
        *whyNot = why;
    }
    return why.isEmpty() ? loaded : nullptr;
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

QString whyNoHdf5() {
    QString whyNot;
    library(&whyNot);
    return whyNot;
}

bool isHdf5(const QByteArray& start) {
    return start.startsWith("\x89HDF\r\n\x1a\n");
}

std::optional<QString> hdf5Text(const QString& fileName, const QString& path, qint64 mostBytes) {
    const Hdf5Library* const loaded = library();
    const int file = loaded != nullptr ? openInput(QFile::encodeName(fileName)) : -1;
    if (file < 0) {
        return std::nullopt;
    }
    // The library opens by name: that of what has been opened, whatever has the other one now.
    const QString opened = QStringLiteral("/proc/self/fd/%1").arg(file);
    isReading = true;
    const auto text = loaded->text(opened, path, mostBytes);
    isReading = false;
    ::close(file);
    return text;
}
