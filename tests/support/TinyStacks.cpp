#include "TinyStacks.h"

#include "frames/TiffFile.h"

std::unique_ptr<TiffData> tinyFrame(int width, int height, double energy,
                                    const std::function<quint16(int, int)>& count) {
    auto frame = std::make_unique<TiffData>();
    frame->width = static_cast<quint32>(width);
    frame->height = static_cast<quint32>(height);
    frame->energy = energy;
    for (int y = 0; y < height; ++y) {
        quint16* row = frame->appendRow(static_cast<std::size_t>(width) * 2);
        for (int x = 0; x < width; ++x) {
            row[x] = count(x, y);
        }
        frame->foldIn(row);
    }
    frame->loaded = true;
    return frame;
}

FrameSet tinyStack(int width, int height, const std::vector<double>& energies,
                   const CountAt& count) {
    FrameSet set;
    for (const double e : energies) {
        const int i = set.size();
        set.append(tinyFrame(width, height, e, [&](int x, int y) { return count(i, x, y); }));
    }
    return set;
}

QStringList writeTinyStack(const QString& directory, const QString& prefix, int width, int height,
                           const std::vector<double>& energies, const CountAt& count) {
    QStringList names;
    std::vector<quint16> data(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (const double e : energies) {
        std::size_t p = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                data[p++] = count(names.size(), x, y);
            }
        }
        QString number = QString::number(e, 'f', 3);
        number.replace('.', '_');
        const QString name = directory + '/' + prefix + '-' + number + "eV.tif";
        if (!writeTiff(name, static_cast<quint32>(width), height, data.data())) {
            return {};
        }
        names << name;
    }
    return names;
}

QByteArray rawTiff(quint32 width, quint32 height, quint16 bits, const QByteArray& pixels) {
    QByteArray out;
    const auto put16 = [&](quint32 v) {
        out.append(static_cast<char>(v & 0xFF)).append(static_cast<char>((v >> 8) & 0xFF));
    };
    const auto put32 = [&](quint32 v) {
        put16(v & 0xFFFF);
        put16(v >> 16);
    };
    const auto tag = [&](quint32 number, quint32 value) {
        put16(number);
        put16(4);  // LONG
        put32(1);
        put32(value);
    };
    constexpr quint32 Tags = 9;
    constexpr quint32 Directory = 8;
    out = "II";
    put16(42);
    put32(Directory);
    put16(Tags);
    tag(256, width);
    tag(257, height);
    tag(258, bits);
    tag(259, 1);
    tag(262, 1);
    tag(273, Directory + 2 + Tags * 12 + 4);
    tag(277, 1);
    tag(278, height);
    tag(279, static_cast<quint32>(pixels.size()));
    put32(0);
    return out + pixels;
}
