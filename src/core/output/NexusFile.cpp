#include "output/NexusFile.h"

#include "files/Hdf5File.h"

namespace {

/// Writes groups and fields with what NeXus wants of them.
class Writer {
  public:
    explicit Writer(Hdf5Writer& file) : m_file(file) {}

    void group(const QString& path, const char* nexusClass) {
        m_file.group(path);
        m_file.attribute(path, "NX_class", QString::fromLatin1(nexusClass));
    }
    void title(const QString& path, const QString& title) {
        m_file.text(path + QStringLiteral("/title"), title);
    }
    template <class Values>
    QString field(const QString& path, const Values& values, const QVector<int>& extents,
                  const QString& unit, const QString& longName) {
        m_file.array(path, values, extents);
        m_file.attribute(path, "units", unit);
        m_file.attribute(path, "long_name", longName);
        return path;
    }
    void pixels(const QString& path, int value) {
        m_file.number(path, value);
        m_file.attribute(path, "units", QStringLiteral("pixel"));
    }
    void maps(const QString& path, const NexusMaps& part);
    void spectrum(const QString& path, const NexusSpectrum& spectrum);
    void note(const QString& path, const QString& text);

  private:
    void bins(const QString& path, const NexusMaps& part);
    /// The first of the names is what is shown, the others can be chosen.
    void signalsOf(const QString& path, const QStringList& names);

    Hdf5Writer& m_file;
};

template <class T>
std::vector<T> valuesOf(const BinRaster& raster, const BinValue& value) {
    std::vector<T> values;
    values.reserve(static_cast<std::size_t>(raster.columns) *
                   static_cast<std::size_t>(raster.rows));
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            values.push_back(static_cast<T>(value(column, row)));
        }
    }
    return values;
}

/// Places of bins, step apart.
std::vector<double> centres(int first, int step, int count) {
    std::vector<double> places;
    for (int i = 0; i < count; ++i) {
        places.push_back(first + i * step);
    }
    return places;
}

void Writer::signalsOf(const QString& path, const QStringList& names) {
    m_file.attribute(path, "signal", names.first());
    m_file.attribute(path, "auxiliary_signals", names.mid(1));
}

void Writer::bins(const QString& path, const NexusMaps& part) {
    const BinRaster& r = part.raster;
    const QString pixel = QStringLiteral("pixel");
    m_file.attribute(path, "axes", QStringList{QStringLiteral("y"), QStringLiteral("x")});
    m_file.attribute(path, "y_indices", 0);
    m_file.attribute(path, "x_indices", 1);
    field(path + QStringLiteral("/x"), centres(r.firstX, r.stepX, r.columns), {r.columns}, pixel,
          QStringLiteral("x (pixel)"));
    field(path + QStringLiteral("/y"), centres(r.firstY, r.stepY, r.rows), {r.rows}, pixel,
          QStringLiteral("y (pixel)"));
    pixels(path + QStringLiteral("/bin_half_width"), r.halfWidth);
    pixels(path + QStringLiteral("/bin_half_height"), r.halfHeight);
    pixels(path + QStringLiteral("/image_width"), part.image.width());
    pixels(path + QStringLiteral("/image_height"), part.image.height());
}

void Writer::maps(const QString& path, const NexusMaps& part) {
    group(path, "NXdata");
    title(path, part.title);
    const QVector<int> extents{part.raster.rows, part.raster.columns};
    QStringList names;
    for (const NexusMap& map : part.maps) {
        const QString at =
            field(path + QLatin1Char('/') + map.name, valuesOf<double>(part.raster, map.value),
                  extents, map.unit, map.title);
        for (const auto& attribute : map.attributes) {
            m_file.attribute(at, attribute.first.constData(), attribute.second);
        }
        if (map.error) {
            field(at + QStringLiteral("_errors"), valuesOf<double>(part.raster, map.error), extents,
                  map.unit, QStringLiteral("One sigma of: ") + map.title);
        }
        names << map.name;
    }
    signalsOf(path, names);
    bins(path, part);
    if (part.blank) {
        field(path + QStringLiteral("/mask"), valuesOf<quint8>(part.raster, part.blank), extents,
              QString(), QStringLiteral("1 where the bin is masked"));
    }
}

void Writer::spectrum(const QString& path, const NexusSpectrum& spectrum) {
    group(path, spectrum.curves.empty() ? "NXcollection" : "NXdata");
    title(path, spectrum.title);
    const QVector<int> extents{static_cast<int>(spectrum.energies.size())};
    for (const auto& attribute : spectrum.attributes) {
        m_file.attribute(path, attribute.first.constData(), attribute.second);
    }
    field(path + QStringLiteral("/energy"), spectrum.energies, extents, QStringLiteral("eV"),
          QStringLiteral("Energy (eV)"));
    QStringList names;
    for (const NexusCurve& curve : spectrum.curves) {
        field(path + QLatin1Char('/') + curve.name, curve.values, extents, QString(), curve.title);
        names << curve.name;
    }
    if (!names.isEmpty()) {
        signalsOf(path, names);
        m_file.attribute(path, "axes", QStringList{QStringLiteral("energy")});
        m_file.attribute(path, "energy_indices", 0);
    }
}

void Writer::note(const QString& path, const QString& text) {
    group(path, "NXnote");
    m_file.text(path + QStringLiteral("/type"), QStringLiteral("text/plain"));
    m_file.text(path + QStringLiteral("/data"), text);
}

}  // namespace

bool writeNexus(const QString& fileName, const NexusContent& content) {
    Hdf5Writer file;
    Writer writer(file);
    const QString root = QStringLiteral("/");
    const QString entry = QStringLiteral("/entry");
    const QString process = entry + QStringLiteral("/process");
    file.attribute(root, "NX_class", QStringLiteral("NXroot"));
    file.attribute(root, "default", QStringLiteral("entry"));
    file.attribute(root, "creator", QStringLiteral("Tarnwick"));
    file.attribute(root, "creator_version", content.version);
    writer.group(entry, "NXentry");
    file.attribute(entry, "default", content.parts.front().name);
    writer.title(entry, QStringLiteral("Results of XAFS imaging"));
    for (const NexusMaps& part : content.parts) {
        writer.maps(entry + QLatin1Char('/') + part.name, part);
    }
    for (const NexusSpectrum& spectrum : content.spectra) {
        writer.spectrum(entry + QLatin1Char('/') + spectrum.name, spectrum);
    }
    writer.group(process, "NXprocess");
    file.text(process + QStringLiteral("/program"), QStringLiteral("Tarnwick"));
    file.text(process + QStringLiteral("/version"), content.version);
    writer.note(process + QStringLiteral("/origin"), content.origin);
    if (!content.record.isEmpty()) {
        writer.note(process + QStringLiteral("/record"), content.record);
    }
    return file.save(fileName);
}
