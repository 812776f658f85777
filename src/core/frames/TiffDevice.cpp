#include "frames/TiffDevice.h"

#include <unistd.h>

#include <QFileInfo>
#include <QIODevice>
#include <algorithm>
#include <new>

#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "files/InputFile.h"
#include "files/SystemPaths.h"

namespace {

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

std::unique_ptr<TIFFOpenOptions, FreeOptions> optionsFor(qint64 fileBytes) {
    std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (options) {
        const quint64 held = std::min(static_cast<quint64>(std::max<qint64>(0, fileBytes)),
                                      Limits::MostForTiff / Limits::MostOfLzw);
        const quint64 most =
            std::min(Limits::MostForTiff, Limits::LeastForTiff + held * Limits::MostOfLzw);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(most));
    }
    return options;
}

/// What libtiff calls.
struct Calls {
    static TiffDevice* of(thandle_t handle) { return static_cast<TiffDevice*>(handle); }
    static tmsize_t read(thandle_t handle, void* data, tmsize_t bytes) {
        TiffDevice* const self = of(handle);
        if (self->place >= size(handle) || !self->io->seek(static_cast<qint64>(self->place))) {
            return 0;
        }
        const qint64 n = self->io->read(static_cast<char*>(data), bytes);
        self->place += static_cast<quint64>(std::max<qint64>(0, n));
        return static_cast<tmsize_t>(n);
    }
    static tmsize_t write(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        TiffDevice* const self = of(handle);
        self->place = whence == SEEK_CUR   ? self->place + offset
                      : whence == SEEK_END ? size(handle) + offset
                                           : offset;
        return self->place;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) {
        return static_cast<toff_t>(std::max<qint64>(0, of(handle)->io->size()));
    }
    static int map(thandle_t handle, void** base, toff_t* bytes) {
        TiffDevice* const self = of(handle);
        try {
            askForMemory(size(handle));
            self->io->seek(0);
            self->whole = self->io->readAll();
        } catch (const std::bad_alloc&) {
            self->whole.clear();
        }
        if (self->whole.isEmpty()) {
            return 0;  // too long for it
        }
        *base = self->whole.data();
        *bytes = static_cast<toff_t>(self->whole.size());
        return 1;
    }
    static void unmap(thandle_t handle, void*, toff_t) { of(handle)->whole.clear(); }
};

}  // namespace

TiffHandle openTiff(const QString& name, const char* mode) {
    TiffHandle tiff;
    for (const QByteArray& path : pathsOfFile(name)) {
        const int file = openInput(path);
        if (file < 0) {
            continue;
        }
        const auto options = optionsFor(::lseek(file, 0, SEEK_END));
        ::lseek(file, 0, SEEK_SET);
        tiff.reset(TIFFFdOpenExt(file, path.constData(), mode, options.get()));
        if (tiff) {
            break;
        }
        ::close(file);
    }
    return tiff;
}

TiffHandle openDevice(TiffDevice* device, const char* mode) {
    device->place = 0;
    return TiffHandle(TIFFClientOpenExt("device", mode, device, Calls::read, Calls::write,
                                        Calls::seek, Calls::close, Calls::size, Calls::map,
                                        Calls::unmap, optionsFor(device->io->size()).get()));
}
