#include <sys/mman.h>
#include <unistd.h>

#include <QFile>

#include "Fuzz.h"
#include "files/Hdf5File.h"
#include "output/ReadOrigin.h"

// Origins in results files. The HDF5 library opens by name: that of a file in memory.

namespace {

const QString& fileWith(const QByteArray& input) {
    static const int file = memfd_create("input", MFD_CLOEXEC);
    static const QString name = QStringLiteral("/proc/self/fd/%1").arg(file);
    const auto size = static_cast<std::size_t>(input.size());
    require(pwrite(file, input.constData(), size, 0) == static_cast<ssize_t>(size) &&
                ftruncate(file, input.size()) == 0,
            "the input in a file");
    return name;
}

}  // namespace

void fuzz(const QByteArray& input) {
    require(whyNoHdf5().isEmpty(), "the module for HDF5 files is there");
    QString whyNot;
    const auto origin = readOrigin(fileWith(input), &whyNot);
    require(origin.has_value() == whyNot.isEmpty(), "an origin or a reason");
    require(!whyNot.contains(QLatin1Char('\n')), "a reason in one line");
    if (origin) {
        const auto back = OriginText::fromText(origin->toText());
        require(back && back->entries == origin->entries, "the same entries again");
    }
    require(logLines() == 0, "no line in the log");
}
