#include "measurement/WorkKey.h"

#include <QCryptographicHash>
#include <algorithm>
#include <vector>

#include "files/Checksum.h"
#include "measurement/Origin.h"

namespace {

constexpr int RowsVersion = 1;  // to be raised when rows of the same inputs become others

QByteArray hex(const Checksum::Value& value) {
    return QByteArray(reinterpret_cast<const char*>(value.data()), static_cast<int>(value.size()))
        .toHex();
}

QByteArray bits(double value) {
    return QByteArray(reinterpret_cast<const char*>(&value), sizeof value).toHex();
}

QByteArray stampText(const FileStamp& stamp) {
    return QByteArray::number(stamp.size) + ' ' + QByteArray::number(stamp.time);
}

QString kindOf(const KeyedWork& work) {
    if (work.isMeanSearch) {
        return QStringLiteral("mean");
    }
    switch (work.run.work) {
        case Work::Fit:
            return QStringLiteral("fit");
        case Work::Calibrate:
            return QStringLiteral("calibration");
        case Work::Residual:
            return QStringLiteral("ra");
        default:
            return QStringLiteral("difference");
    }
}

/// Writes lines "name value" for the two digests of a key.
class KeyWriter {
  public:
    explicit KeyWriter(WorkKey* key) : m_key(key) {}
    void finish() {
        m_key->rows = m_rows.result();
        m_key->job = m_job.result();
    }

    void add(const char* name, const QByteArray& value) {
        line(&m_rows, name, value);
        line(&m_job, name, value);
    }
    void add(const char* name, qint64 value) { add(name, QByteArray::number(value)); }
    void add(const char* name, double value) { add(name, bits(value)); }
    /// What comes out of files: of the rows alone.
    void found(const char* name, const QByteArray& value) { line(&m_rows, name, value); }
    void file(const char* name, const QString& path, const QByteArray& state) {
        add(name, path.toUtf8());
        found("state", state);
        m_key->files.append({path, QString::fromLatin1(state)});
    }

    void frames(const char* name, const StackInputs& stack);
    void dark(const Inputs& in);
    void raster(const BinRaster& raster);
    void spectrum(const FileInput& file, const XafsSpectrum& spectrum);
    void map(const Inputs& in, const MapValues& values);
    void fit(const Run& run);
    void residual(const Run& run);
    void background(const Run& run);

  private:
    static void line(QCryptographicHash* digest, const char* name, const QByteArray& value) {
        digest->addData(QByteArray(name) + ' ' + QByteArray::number(value.size()) + ' ' + value +
                        '\n');
    }

    WorkKey* m_key;
    QCryptographicHash m_rows{QCryptographicHash::Sha256};
    QCryptographicHash m_job{QCryptographicHash::Sha256};
};

void KeyWriter::frames(const char* name, const StackInputs& stack) {
    add(name, static_cast<qint64>(stack.files.size()));
    for (const Stack::File& frame : stack.files) {
        add("energy", frame.energy);
        file("frame", frame.path, stampText(frame.stamp));
    }
}

void KeyWriter::dark(const Inputs& in) {
    add("dark", static_cast<qint64>(in.dark.size()));
    for (int i = 0; i < in.dark.size(); ++i) {
        file("frame", in.dark[i], stampText(in.darkStamps.value(i)));
    }
}

void KeyWriter::raster(const BinRaster& raster) {
    for (const int number : {raster.firstX, raster.stepX, raster.columns, raster.firstY,
                             raster.stepY, raster.rows, raster.halfWidth, raster.halfHeight}) {
        add("raster", static_cast<qint64>(number));
    }
    if (!raster.inside) {
        return;
    }
    Checksum bins;
    std::vector<char> row(static_cast<std::size_t>(std::max(0, raster.columns)));
    for (int y = 0; y < raster.rows; ++y) {
        for (int x = 0; x < raster.columns; ++x) {
            row[static_cast<std::size_t>(x)] = raster.holds(x, y) ? 1 : 0;
        }
        bins.add(row.data(), row.size());
    }
    // A threshold or a mask makes such a shape from values.
    found("inside", hex(bins.value()));
}

void KeyWriter::spectrum(const FileInput& file, const XafsSpectrum& spectrum) {
    this->file("spectrum", file.path, file.sha256);
    found("points", hex(Checksum::of(spectrum.points(),
                                     static_cast<std::size_t>(spectrum.size()) * sizeof(Spoint))));
    add("offset", spectrum.offset());
    add("background", static_cast<qint64>(spectrum.backgroundType()));
    for (const double end :
         {spectrum.preStart(), spectrum.preEnd(), spectrum.postStart(), spectrum.postEnd()}) {
        add("range", end);
    }
}

void KeyWriter::map(const Inputs& in, const MapValues& values) {
    const QByteArray shifts = hex(
        Checksum::of(values.constData(), static_cast<std::size_t>(values.size()) * sizeof(double)));
    add("map", static_cast<qint64>(values.size()));
    // By its values: a batch that saves a map and loads it makes a file of another time each run.
    if (in.map && !in.map->calibration) {
        file("file", in.map->file.path, shifts);
    } else {
        found("shifts", shifts);
    }
}

void KeyWriter::background(const Run& run) {
    const Inputs& in = run.inputs;
    add("background", static_cast<qint64>(in.background));
    for (const double end :
         {in.ranges.preStart, in.ranges.preEnd, in.ranges.postStart, in.ranges.postEnd}) {
        add("range", end);
    }
    const bool isCommon = hasCommonE0(in, run.work);
    add("e0", static_cast<qint64>(isCommon ? static_cast<int>(in.e0.kind) : 0));
    const Normalisation rule = sampleRule(run);
    if (isCommon && rule.e0) {
        found("E0", bits(*rule.e0));
    }
    if (isCommon && in.e0.kind == EdgeChoice::Kind::Energy) {
        add("energy", in.e0.energy);
    }
}

void KeyWriter::fit(const Run& run) {
    const Inputs& in = run.inputs;
    add("method", static_cast<qint64>(in.method));
    add("scale", static_cast<qint64>(in.referenceScale));
    add("constraints", static_cast<qint64>(in.constraints));
    add("errors", static_cast<qint64>(in.errorMaps ? 1 : 0));
    background(run);
}

void KeyWriter::residual(const Run& run) {
    add("energy", run.inputs.raEnergy);
    add("factor", run.inputs.raFactor);
    background(run);
}

/// The files of the spectra, in their order.
QVector<FileInput> spectrumFiles(const Run& run) {
    if (run.work == Work::Calibrate) {
        return {run.inputs.standard};
    }
    QVector<FileInput> files;
    for (const ReferenceInput& reference : run.inputs.references) {
        if (reference.takesPart) {
            files << reference.file;
        }
    }
    return files;
}

void addKind(KeyWriter* writer, const KeyedWork& work) {
    const Run& run = work.run;
    const bool goesByMap = work.isMeanSearch || run.work == Work::Fit ||
                           run.work == Work::Difference || hasCommonE0(run.inputs, run.work);
    if (goesByMap) {
        writer->map(run.inputs, work.map);
    }
    if (work.isMeanSearch) {
        return;
    }
    const QVector<FileInput> files = spectrumFiles(run);
    writer->add("spectra", static_cast<qint64>(work.spectra.size()));
    for (int i = 0; i < work.spectra.size(); ++i) {
        writer->spectrum(files.value(i), work.spectra[i]);
    }
    if (run.work == Work::Fit) {
        writer->fit(run);
    } else if (run.work == Work::Residual) {
        writer->residual(run);
    } else if (run.work == Work::Difference) {
        writer->add("from", run.inputs.differenceFrom);
        writer->add("to", run.inputs.differenceTo);
    }
}

}  // namespace

WorkKey keyOf(const KeyedWork& work) {
    WorkKey key;
    key.kind = kindOf(work);
    KeyWriter writer(&key);
    writer.found("program", programName().toUtf8());
    writer.found("version", QByteArray::number(RowsVersion));
    writer.add("kind", key.kind.toUtf8());
    writer.add("width", static_cast<qint64>(work.run.inputs.size.width()));
    writer.add("height", static_cast<qint64>(work.run.inputs.size.height()));
    writer.frames("I1", work.run.inputs.i1);
    writer.frames("I0", work.run.inputs.i0);
    writer.dark(work.run.inputs);
    writer.raster(work.raster);
    addKind(&writer, work);
    writer.finish();
    return key;
}
