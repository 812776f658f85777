#include <algorithm>

#include "OutcomeCase.h"
#include "batch/CommandTables.h"

namespace {

/// What an argument of a kind may be, the good one first.
QStringList argumentsOf(ArgKind kind) {
    switch (kind) {
        case ArgKind::Integer:
            return {"1", "3.0", "x", "-7", "99999"};
        case ArgKind::Flag:
            return {"1", "yes"};
        case ArgKind::Real:
            return {"7110", "7,1", "nan"};
        case ArgKind::Text:
            return {"eV", "[7"};
        case ArgKind::Mode:
            return {"NEW", "NWE", "i1-7000_000eV.tif"};
        case ArgKind::InFile:
            return {"a.dat", "none.dat", ".", "keV.dat"};
        case ArgKind::OutFile:
            return {"out.png", "none/out.png", ".", "i1-7000_000eV.tif", "out"};
        case ArgKind::Directory:
            return {".", "none"};
        case ArgKind::Pattern:
            return {"i1-*.tif", "*.none"};
        case ArgKind::VictreenWord:
            return {"0", "vic"};
        case ArgKind::Stack:
            return {"I1", "I2"};
        case ArgKind::Unit:
            return {"eV", "MeV"};
        case ArgKind::Edge:
            return {"each", "mean", "7110", "1", "-7110", "edge"};
        case ArgKind::Scale:
            return {"jump", "none", "half"};
        case ArgKind::Background:
            return {"Simple", "Polynomial"};
        case ArgKind::Crystal:
            return {"Si(111)", "Si"};
        case ArgKind::Constraints:
            return {"nonnegative", "positive"};
        case ArgKind::MapName:
            return {"fraction", "R", "difference", "share"};
        case ArgKind::MaskLimit:
            return {"5", "off", "0"};
        case ArgKind::RangeOf:
            return {"0", "fraction", "maps", "share"};
        case ArgKind::RangeEnd:
            return {"1", "robust", "fixed"};
        case ArgKind::Viewed:
            return {"fraction", "maps", "frames", "share"};
        case ArgKind::ScaleName:
            return {"viridis", "stated", "rainbow"};
        case ArgKind::Reversed:
            return {"reversed", "1"};
        case ArgKind::Channel:
            return {"0", "1", "none", "-1", "7", "red"};
    }
    return {};
}

/// The line itself, each of its arguments made bad in turn, one too few and one too many.
QStringList variantsOf(const CommandRow& row) {
    const QString name = QString::fromLatin1(row.name);
    QStringList good{name};
    for (const ArgKind kind : row.args) {
        good << argumentsOf(kind).first();
    }
    if (name.contains("_files") && !name.contains("pattern") && good.size() > 1) {
        good.last() = "i1-7000_000eV.tif";
    }
    if (name == "calib_load_map") {
        good.last() = "map.emp";
    }
    QStringList lines{good.join(' ')};
    for (int i = 1; i < good.size(); ++i) {
        for (const QString& other : argumentsOf(row.args[static_cast<std::size_t>(i - 1)]).mid(1)) {
            QStringList bad = good;
            bad[i] = other;
            lines << bad.join(' ');
        }
        lines << good.mid(0, i).join(' ');
    }
    return lines << good.join(' ') + " surplus";
}

const QStringList Load = {"load_I1_files_of_pattern NEW . i1-*.tif",
                          "load_I0_files_of_pattern NEW . i0-*.tif",
                          "set_band_w 0",
                          "set_band_h 0",
                          "select_region 0 0 0 0",
                          "analyzer_set_LCF_std 0 1 0 a.dat 0",
                          "analyzer_set_LCF_std 1 1 0 b.dat 0",
                          "calib_load_std a.dat"};

}  // namespace

/// `--check` and the run say the same of every line: each command, good and bad, without frames,
/// with them and after analyses.
class TestPrediction : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    void everyCommand_data() {
        QTest::addColumn<QStringList>("before");
        QTest::newRow("without frames") << QStringList();
        QTest::newRow("with frames") << Load;
        QTest::newRow("after analyses") << Load + QStringList{"calib_exec",
                                                              "move_position 3 3",
                                                              "analyzer_exec_ra",
                                                              "analyzer_exec_LCF",
                                                              "analyzer_select_image 0",
                                                              "analyzer_select_image_type 1",
                                                              "select_disp_image 3"};
    }

    void everyCommand() {
        QFETCH(QStringList, before);
        QStringList lines;
        for (const CommandRow& row : commandTable()) {
            lines << before << variantsOf(row);
        }
        m_cases.inFolder(
            [] { put("keV.dat", "7.0 1\n7.1 1\n7.2 1\n7.3 1\n7.4 1\n"); },
            [&lines] {
                put("all.bat", lines.join('\n').toUtf8());
                const OutcomeCases::Ends predicted = OutcomeCases::predictedEnds("all.bat");
                const OutcomeCases::Ends run = OutcomeCases::ends("all.bat");
                int wrong = 0;
                for (int i = 1; i <= lines.size(); ++i) {
                    if (predicted.value(i) != run.value(i)) {
                        ++wrong;
                        qWarning("line %d, %s: predicted '%s', ended '%s'", i,
                                 qPrintable(lines.at(i - 1)), qPrintable(predicted.value(i)),
                                 qPrintable(run.value(i)));
                    }
                }
                QCOMPARE(wrong, 0);
            });
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestPrediction)
#include "tst_prediction.moc"
