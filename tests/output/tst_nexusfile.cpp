#include <hdf5.h>
#include <sys/stat.h>

#include <QTemporaryDir>
#include <cerrno>
#include <cmath>
#include <functional>
#include <limits>

#include "Files.h"
#include "FullDisk.h"
#include "SameBits.h"
#include "TestMain.h"
#include "output/BinTable.h"
#include "output/NexusFile.h"
#include "output/ReadOrigin.h"

namespace {

constexpr int Columns = 300;  // more than a block
constexpr int Rows = 3;
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

double valueAt(int column, int row) {
    return column == 5 && row == 1   ? Nan
           : column == 6 && row == 1 ? -std::numeric_limits<double>::infinity()
                                     : column + row / 3.0 - 0.1;
}

NexusContent someContent() {
    NexusContent content;
    content.version = "7.8";
    NexusMaps fit{"fit", "Fit", {2, 5, Columns, 1, 3, Rows, 2, 1}, {1500, 9}, {}};
    fit.maps.push_back({"fraction_0",
                        QString::fromUtf8("試料"),
                        "eV",
                        valueAt,
                        [](int column, int) { return 0.5 * column; },
                        {{"reference", "a.dat"}}});
    fit.maps.push_back({"jump_0", "Jump", "", [](int, int row) { return -row; }});
    fit.blank = [](int column, int) { return column == 299 ? 1.0 : 0.0; };
    NexusMaps shift{"calibration", "Shift", {0, 1, 1, 0, 1, 1, 0, 0}, {1, 1}, {}};
    shift.maps.push_back({"energy_shift", "Shift", "eV", [](int, int) { return 0.25; }});
    content.parts = {fit, shift};
    content.spectra.push_back({"spectrum", "Mean", {7000.1, 7001.2}, {{"mu_t", "", {0.1, 0.2}}}});
    content.spectra.push_back({"reference_0", "Energies alone", {7000.0}, {}});
    content.origin = "Tarnwick origin 1\nsaved by = save_results\n";
    content.record = "set_band_w 1\n";
    return content;
}

/// Reads what the library itself finds in a file; empty for what is not there.
class Reader {
  public:
    explicit Reader(const QString& name)
        : m_file(H5Fopen(QFile::encodeName(name).constData(), H5F_ACC_RDONLY, H5P_DEFAULT)) {}
    ~Reader() { H5Fclose(m_file); }

    QStringList attribute(const QString& path, const char* name) const {
        const hid_t attribute =
            H5Aopen_by_name(m_file, path.toUtf8().constData(), name, H5P_DEFAULT, H5P_DEFAULT);
        const hid_t space = H5Aget_space(attribute);
        const hid_t type = H5Aget_type(attribute);
        std::vector<char*> texts(
            std::size_t(std::max<hssize_t>(0, H5Sget_simple_extent_npoints(space))));
        QStringList values;
        if (H5Aread(attribute, type, texts.data()) >= 0) {
            for (const char* text : texts) {
                values << QString::fromUtf8(text);
            }
            H5Dvlen_reclaim(type, space, H5P_DEFAULT, texts.data());
        }
        H5Tclose(type);
        H5Sclose(space);
        H5Aclose(attribute);
        return values;
    }
    /// The numbers, after their extents.
    std::vector<double> array(const QString& path) const {
        const hid_t set = H5Dopen2(m_file, path.toUtf8().constData(), H5P_DEFAULT);
        const hid_t space = H5Dget_space(set);
        hsize_t extents[2] = {0, 0};
        const int rank = H5Sget_simple_extent_dims(space, extents, nullptr);
        std::vector<double> values(extents, extents + rank);
        values.resize(values.size() + std::size_t(H5Sget_simple_extent_npoints(space)));
        H5Dread(set, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data() + rank);
        H5Sclose(space);
        H5Dclose(set);
        return values;
    }

  private:
    hid_t m_file;
};

/// Makes a file lead to another one of that name.
using Lead = std::function<void(hid_t file, const char* other)>;

}  // namespace
Q_DECLARE_METATYPE(Lead)

class TestNexusFile : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString& name) const { return m_dir.filePath(name); }

  private slots:
    void viewersFindTheirWay() {
        QVERIFY(writeNexus(path("a.h5"), someContent()));
        const Reader file(path("a.h5"));
        const auto is = [&file](const char* object, const char* attribute, const QString& text) {
            const QString found = file.attribute(object, attribute).join(' ');
            return found == text || (qWarning("%s: %s", object, qPrintable(found)), false);
        };
        QVERIFY(is("/", "NX_class", "NXroot"));
        QVERIFY(is("/", "default", "entry"));
        QVERIFY(is("/entry", "NX_class", "NXentry"));
        QVERIFY(is("/entry", "default", "fit"));
        QVERIFY(is("/entry/fit", "NX_class", "NXdata"));
        QVERIFY(is("/entry/fit", "signal", "fraction_0"));
        QVERIFY(is("/entry/fit", "auxiliary_signals", "jump_0"));
        QVERIFY(is("/entry/fit", "axes", "y x"));
        QVERIFY(is("/entry/fit/fraction_0", "units", "eV"));
        QVERIFY(is("/entry/fit/fraction_0", "long_name", QString::fromUtf8("試料")));
        QVERIFY(is("/entry/fit/fraction_0", "reference", "a.dat"));
        QVERIFY(is("/entry/spectrum", "axes", "energy"));
        QVERIFY(is("/entry/reference_0", "NX_class", "NXcollection"));
        QVERIFY(is("/entry/process/record", "NX_class", "NXnote"));
    }

    void valuesAreAsTheyAre() {
        QVERIFY(writeNexus(path("a.h5"), someContent()));
        const Reader file(path("a.h5"));
        std::vector<double> values{Rows, Columns};
        std::vector<double> errors = values;
        std::vector<double> mask = values;
        std::vector<double> x{Columns};
        for (int row = 0; row < Rows; ++row) {
            for (int column = 0; column < Columns; ++column) {
                values.push_back(valueAt(column, row));
                errors.push_back(0.5 * column);
                mask.push_back(column == 299);
            }
        }
        for (int column = 0; column < Columns; ++column) {
            x.push_back(2 + 5 * column);
        }
        const auto same = [](const std::vector<double>& a, const std::vector<double>& b) {
            return a.size() == b.size() &&
                   std::equal(a.begin(), a.end(), b.begin(),
                              [](double p, double q) { return ::same(p, q); });
        };
        QVERIFY(same(file.array("/entry/fit/fraction_0"), values));
        QVERIFY(same(file.array("/entry/fit/fraction_0_errors"), errors));
        QVERIFY(same(file.array("/entry/fit/mask"), mask));
        QVERIFY(same(file.array("/entry/fit/x"), x));
        QVERIFY(same(file.array("/entry/fit/y"), {Rows, 1, 4, 7}));
        QVERIFY(same(file.array("/entry/fit/bin_half_width"), {2}));
        QVERIFY(same(file.array("/entry/calibration/energy_shift"), {1, 1, 0.25}));
        QVERIFY(same(file.array("/entry/spectrum/energy"), {2, 7000.1, 7001.2}));
        QVERIFY(same(file.array("/entry/spectrum/mu_t"), {2, 0.1, 0.2}));
    }

    void sameBytesOrTheOldFile() {
        QVERIFY(writeNexus(path("a.h5"), someContent()));
        const QByteArray whole = contentOf(path("a.h5"));
        QTest::qWait(1100);  // times in a file have seconds
        QVERIFY(writeNexus(path("b.hdf5"), someContent()));
        QVERIFY(contentOf(path("b.hdf5")) == whole);
        NexusContent other = someContent();
        other.version = "9";
        for (const int bytes : {0, 1000, whole.size() - 1}) {
            const FullDisk full(static_cast<rlim_t>(bytes));
            QVERIFY(!writeNexus(path("a.h5"), other));
        }
        QVERIFY(contentOf(path("a.h5")) == whole);
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files), QStringList({"a.h5", "b.hdf5"}));
        other.parts.front().maps.front().name = "/";  // what the library refuses
        QVERIFY(!writeNexus(path("a.h5"), other));
        QVERIFY(contentOf(path("a.h5")) == whole);
    }

    void otherFilesTellNothing() {
        const auto whyNot = [this](const QByteArray& content) {
            put(path("c.h5"), content);
            QString why;
            return readOrigin(path("c.h5"), &why) ? QString("read") : why;
        };
        NexusContent content = someContent();
        QVERIFY(writeNexus(path("a.h5"), content));
        const QByteArray whole = contentOf(path("a.h5"));
        QCOMPARE(whyNot(whole), QString("read"));
        QCOMPARE(whyNot(whole.left(whole.size() - 1)), QString("a damaged HDF5 file"));
        content.origin = "of another program";
        QVERIFY(writeNexus(path("a.h5"), content));
        QCOMPARE(whyNot(contentOf(path("a.h5"))), QString("no origin in it"));
    }

    // Nobody writes to the FIFO: who opened it would wait for ever.
    void otherFilesAreNotOpened_data() {
        QTest::addColumn<Lead>("lead");
        const auto putText = [](hid_t file, hid_t creation) {
            const hsize_t one = 1;
            const hid_t type = H5Tcopy(H5T_C_S1);
            H5Tset_size(type, 8);
            const hid_t links = H5Pcreate(H5P_LINK_CREATE);
            H5Pset_create_intermediate_group(links, 1);
            H5Dclose(H5Dcreate2(file, "/entry/process/origin/data", type,
                                H5Screate_simple(1, &one, nullptr), links, creation, H5P_DEFAULT));
        };
        QTest::newRow("link") << Lead([](hid_t file, const char* other) {
            H5Lcreate_external(other, "/entry", file, "entry", H5P_DEFAULT, H5P_DEFAULT);
        });
        QTest::newRow("values") << Lead([putText](hid_t file, const char* other) {
            const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
            H5Pset_external(creation, other, 0, 8);
            putText(file, creation);
        });
        QTest::newRow("virtual") << Lead([putText](hid_t file, const char* other) {
            const hsize_t one = 1;
            const hid_t space = H5Screate_simple(1, &one, nullptr);
            const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
            H5Pset_virtual(creation, space, other, "/text", space);
            putText(file, creation);
        });
    }
    void otherFilesAreNotOpened() {
        QFETCH(Lead, lead);
        const QByteArray other = QFile::encodeName(path("fifo"));
        QVERIFY(mkfifo(other.constData(), 0600) == 0 || errno == EEXIST);
        const hid_t file = H5Fcreate(QFile::encodeName(path("o.h5")).constData(), H5F_ACC_TRUNC,
                                     H5P_DEFAULT, H5P_DEFAULT);
        lead(file, other.constData());
        QVERIFY(H5Fclose(file) >= 0);
        QString whyNot;
        QVERIFY(!readOrigin(path("o.h5"), &whyNot));
        QCOMPARE(whyNot, QString("no origin in it"));
    }

    void tableOfBins() {
        BinTable table{{3, 7, 2, 5, 3, 2, 3, 1}, {}};
        table.columns.push_back({"fraction_1", [](int c, int r) {
                                     return r > 0 ? (c > 0 ? Nan : -1e300) : 0.1 + 0.2 * c;
                                 }});
        table.columns.push_back({"R", [](int c, int r) { return c - r; }});
        QVERIFY(writeBinTable(path("a.csv"), table));
        const QByteArray whole =
            "x,y,fraction_1,R\n3,5,0.1,0\n10,5,0.30000000000000004,1\n"
            "3,8,-1e+300,-1\n10,8,nan,0\n";
        QCOMPARE(contentOf(path("a.csv")), whole);
        table.columns.pop_back();
        {
            const FullDisk full(20);
            QVERIFY(!writeBinTable(path("a.csv"), table));
        }
        QCOMPARE(contentOf(path("a.csv")), whole);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestNexusFile)
#include "tst_nexusfile.moc"
