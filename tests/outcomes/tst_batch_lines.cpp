#include <QEventLoop>

#include "OutcomeCase.h"
#include "batch/ArgumentCheck.h"
#include "batch/BatchRunner.h"
#include "batch/CommandTables.h"
#include "batch/Record.h"

namespace {

/// A text that is none of its kind; empty where any text is.
QString badTextOf(ArgKind kind) {
    switch (kind) {
        case ArgKind::Integer:
        case ArgKind::Flag:
            return QStringLiteral("1.0");
        case ArgKind::Real:
            return QStringLiteral("inf");
        case ArgKind::Stack:
        case ArgKind::Unit:
        case ArgKind::Edge:
        case ArgKind::Scale:
        case ArgKind::Background:
        case ArgKind::Crystal:
        case ArgKind::Constraints:
        case ArgKind::MapName:
        case ArgKind::MaskLimit:
        case ArgKind::RangeOf:
        case ArgKind::RangeEnd:
        case ArgKind::Viewed:
        case ArgKind::ScaleName:
        case ArgKind::Reversed:
        case ArgKind::Channel:
            return QStringLiteral("furlong");
        default:
            return QString();
    }
}

QString goodTextOf(ArgKind kind) {
    switch (kind) {
        case ArgKind::Mode:
            return QStringLiteral("new");
        case ArgKind::Stack:
            return QStringLiteral("i0");
        case ArgKind::Unit:
            return QStringLiteral("KEV");
        case ArgKind::Edge:
            return QStringLiteral("Mean");
        case ArgKind::Scale:
            return QStringLiteral("NONE");
        case ArgKind::Background:
            return QStringLiteral("victreen");
        case ArgKind::Crystal:
            return QStringLiteral("ge(333)");
        case ArgKind::Constraints:
            return QStringLiteral("BOTH");
        case ArgKind::MapName:
            return QStringLiteral("r");
        case ArgKind::Viewed:
            return QStringLiteral("Frames");
        case ArgKind::ScaleName:
            return QStringLiteral("Inferno");
        case ArgKind::Reversed:
            return QStringLiteral("REVERSED");
        default:
            return QStringLiteral("3");
    }
}

QStringList goodArgs(const CommandRow& row) {
    QStringList args;
    for (const ArgKind kind : row.args) {
        args << goodTextOf(kind);
    }
    return args;
}

}  // namespace

/// What is wrong with a line, and what is said of it.
class TestBatchLines : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    /// Each command without its arguments, and with each of them one that is none.
    void badArgumentsOfEveryCommand() {
        QStringList lines;
        for (const CommandRow& row : commandTable()) {
            const QString name = QString::fromLatin1(row.name);
            if (row.required > 0) {
                lines << name << name + ' ' + goodArgs(row).mid(0, row.required - 1).join(' ');
            }
            for (int i = 0; i < int(row.args.size()); ++i) {
                QStringList args = goodArgs(row);
                args[i] = badTextOf(row.args[std::size_t(i)]);
                if (!args.at(i).isEmpty()) {
                    lines << name + ' ' + args.join(' ');
                }
            }
            const Outcome good = judgeArguments(row, goodArgs(row));
            QVERIFY2(good.texts().isEmpty(), qPrintable(name + good.texts().join('\n')));
            const Outcome surplus = judgeArguments(row, goodArgs(row) + QStringList("more"));
            QVERIFY2(!surplus.failed() && surplus.warnings.isEmpty() == row.repeats, row.name);
        }
        QVERIFY(lines.size() > 100);

        Measurement measurement;
        BatchRunner runner(measurement);
        const QStringList before = recordOf(measurement).lines;
        QStringList wrong;
        int done = 0;
        QEventLoop loop;
        connect(&runner, &BatchRunner::commandDone, &loop,
                [&](const CmdLine& cmd, const Outcome& outcome) {
                    ++done;
                    const bool isSame = recordOf(measurement).lines == before;
                    if (!outcome.failed() || !outcome.files.isEmpty() || !isSame) {
                        wrong << cmd.text;
                    }
                });
        connect(runner.dispatcher(), &BatchDispatcher::ended, &loop, &QEventLoop::quit);
        runner.start(lines);
        loop.exec();
        QCOMPARE(wrong, QStringList());
        QCOMPARE(done, lines.size());
    }

    void lines_data() {
        OutcomeCases::declare();
        const auto add = [](const char* batch, const char* verdict, const char* text = "") {
            OutcomeCases::add(batch, {}, batch, verdict, text);
        };
        const QString before = "select_region %1\nload_I1_files_of_pattern NEW . i1-*.tif";
        const auto addRegion = [&before](const char* area, const char* verdict, const char* text) {
            OutcomeCases::add(area, {}, before.arg(area), verdict, text);
        };
        add("set_band_w 1 2", "warning", "'2' is ignored: too many arguments");
        add("set_band_w 99999999999", "failed", "is not an integer");
        add("select_disp_image 4", "failed", "4 is out of range 0 to 3");
        add("LOAD\nshow_frame 31", "failed", "no frame 31");
        add("REFS\nanalyzer_select_image 5", "failed", "5 is out of range 0 to 4");
        add("analyzer_select_image_type -1", "failed", "-1 is out of range 0 to 1");
        add("REFS\nanalyzer_set_LCF_std 3 1 0 a.dat 0", "failed", "no reference panel 3");
        add("set_plot_axes 5 eV", "failed", "no ordinate 5");
        add("set_plot_axes 1 furlong", "failed", "no unit furlong");
        add("set_view_range 5", "failed", "too few arguments");
        add("set_view_range 5 5", "failed", "must lie above");
        add("set_frame_view speed", "failed", "no view of frames 'speed'");
        add("set_frame_view absorption 7000", "failed", "only a difference has energies");
        add("set_frame_view difference", "failed", "too few arguments");
        add("LOAD\nset_frame_view difference 7000 7400", "failed", "lies outside those of the fr");
        add("LOAD\nset_frame_view difference 7100.5\nsave_image_with_bar d.png", "done");
        add("set_frame_view difference 7100 7400\nLOAD\nsave_image d.png", "failed", "outside");
        add("set_view_range 5 robust", "failed", "'robust' is not a number");
        add("set_view_range 5 6 7", "warning", "'7' is ignored");
        add("set_view_range fraction", "failed", "too few arguments");
        add("set_view_range fraction 1", "failed", "too few arguments");
        add("set_view_range fraction 1 0.5", "failed", "must lie above");
        add("set_view_range maps full 1", "warning", "'1' is ignored");
        add("set_view_range frames 0 1", "failed", "neither a number nor a map");
        add("set_colour_map fraction rainbow", "failed", "no such colour map");
        add("set_colour_map frames vik REVERSED", "done");
        add("set_energy_pattern I1 [ eV", "failed", "not a regular expression");
        add("move_position 3 3", "failed", "no image");
        add("LOAD\nmove_position 12 3", "failed", "12 x 8 pixels");
        add("LOAD\nmove_position 11 7", "done");
        add("calib_set_edge_eV 7 112", "warning", "'112' is ignored");
        add("calib_set_edge_eV 7,112", "warning", "'7,112' is not a number");
        add("calib_set_edge_eV", "done");
        add("load_I1_files a.dat i1-7000_000eV.tif", "warning", "neither NEW nor ADD");
        add("load_I1_files_of_pattern NEW . none*", "failed", "no file matches");

        addRegion("0 0 0 0", "done", "");
        addRegion("12 8 0 0", "done", "");
        addRegion("-2 3 5 9", "warning", "over the edge of the image: 0 3 5 8 is left");
        addRegion("20 20 30 30", "failed", "inside the image of 12 x 8(.|\n)*whole image");
        add("select_region 3 3 3 9", "failed", "no pixel of any image");
        add("LOAD\nselect_region 5 5 20 20", "warning", "5 5 12 8 is left");
        add("LOAD\nselect_region 12 0 20 8", "failed", "inside the image of 12 x 8");

        add("frobnicate", "failed", "unknown command");
        add("set_band_w 1\n  ", "done");
        add(":for i %i 1 2\n:next j", "failed", ":next without :for of the name 'j'");
        add(":for i %i 1", "failed", ":for needs four arguments");
        add(":for i %i a 0", "failed", "'a' is not an integer and counts as 0");
        add("set_band_w 1\n:for i %i 1 2", "failed", "loop 'i' is never closed");
        add(":rem_start", "failed", "never closed by :rem_end");
        add(":rem_end", "warning", ":rem_end without :rem_start");
        add(":echo a b", "warning", "only 'a' is echoed");
        add("calib_set_edge_eV \"7112", "warning", "opened but not closed");
        add("calib_set_edge_eV 71\"12", "warning", "quote inside an item");
        add("set_band_w 1 \\", "warning", "no line follows");
        add(":for i 1 12 12\nset_band_w 11\n:next i\nset_band_w 11", "warning", "endless");
    }
    void lines() { m_cases.judge(); }
};

TARNWICK_TEST_MAIN(QApplication, TestBatchLines)
#include "tst_batch_lines.moc"
