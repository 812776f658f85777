#include <QMap>
#include <QSet>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "batch/BatchText.h"
#include "batch/CmdLine.h"
#include "batch/CommandTables.h"
#include "batch/LineItems.h"
#include "batch/NamedTexts.h"
#include "batch/StartLine.h"

class TestCmdLine : public QObject {
    Q_OBJECT

  private slots:
    void parse_data() {
        columns<QString, QString, QStringList, QString>("line", "command", "args", "said");
        const auto row = [](const char* line, const char* command, const QStringList& args,
                            const char* said = "") {
            QTest::newRow(line) << line << command << args << said;
        };
        row("", "", {});
        row("  \t ", "", {});
        row("set_band_w\t3  ", "set_band_w", {"3"});
        row("save_image \"a b.png\" c", "save_image", {"a b.png", "c"});
        row("x \"\" y", "x", {"y"});
        row("\":for\" i", ":for", {"i"});
        row("save_image a.png # note", "save_image", {"a.png", "#", "note"});
        row("save_image \"a b", "save_image", {"a b"},
            "In a line [ \"a b] item is started from quote but not ended by quote");
        row("save_image a\"", "save_image", {"a\""},
            "In a line [ a\"] item is started from not quote but ended by quote");
        row("x \"a\"\"b\"c", "x", {"a", "b", "c"});
    }

    void parse() {
        QFETCH(QString, line);
        QFETCH(QString, said);
        if (!said.isEmpty()) {
            QTest::ignoreMessage(QtDebugMsg, qPrintable(said));
        }
        const CmdLine cmd = CmdLine::parse(line);
        QCOMPARE(cmd.text, line);
        QTEST(cmd.command, "command");
        QTEST(cmd.args, "args");
        QCOMPARE(cmd.isControl, cmd.command.startsWith(':'));
        QCOMPARE(cmd.arg(99), QString());
    }

    void commentsAndContinuations() {
        QCOMPARE(stripComment("\"a # b\""), QString("\"a "));
        QVERIFY(isBlank("   # only a note") && !isBlank(" x # note"));
        QString line = "load file \\ \t";
        QVERIFY(hasContinuation(line));
        QCOMPARE(line, QString("load file "));
        QCOMPARE(withoutContinuation("a \\ b"), QString("a \\ b"));
    }

    void namesIgnoreCase() {
        QCOMPARE(commandId("LOAD_i1_FILES"), 2);
        QCOMPARE(commandId(":for"), int(NoCommand));
        QCOMPARE(controlId(":Rem_End"), int(RemEndControl));
        QCOMPARE(controlId("set_band_w"), int(NoControl));
    }

    void rowsAreConsistent() {
        QSet<QString> names;
        int next = 0;
        for (const CommandRow& row : commandTable()) {
            next += next == NoCommand ? 1 : 0;  // the id of none
            QCOMPARE(row.id, next++);
            QCOMPARE(commandId(row.name), row.id);
            names.insert(QString(row.name).toUpper());
            QVERIFY(row.required <= int(row.args.size()));
            const QString name = row.name;
            const bool isForm = name.startsWith("saveDataCfg");
            QCOMPARE(row.saves(), (name.contains("save") && !isForm) || name == "fit_spectrum");
        }
        QCOMPARE(names.size(), int(commandTable().size()));
    }

    // The batch reference says of every command what the table says, and its examples work.
    void referenceIsInStep() {
        const QByteArray text = contentOf(TARNWICK_SOURCE_DIR "/docs/batch.md");
        const QStringList sections = QString::fromUtf8(text).split("\n### ");
        QMap<int, QString> byId;
        for (const QString& section : sections) {
            bool isCommand = false;
            const int id = section.section(' ', 0, 0).toInt(&isCommand);
            if (isCommand) {
                QVERIFY2(!byId.contains(id), qPrintable(section));
                byId.insert(id, section);
            }
        }
        QCOMPARE(byId.size(), int(commandTable().size()));
        for (const CommandRow& row : commandTable()) {
            const QString section = byId.value(row.id);
            QCOMPARE(section.section('`', 1, 1), commandSyntax(row));
            const QString prose = section.simplified();
            QVERIFY2(prose.contains("Finishes " + finishName(row) + "."), row.name);
            const QString example = section.section("```", 1, 1).trimmed();
            for (const QString& line : example.split('\n')) {
                const CmdLine cmd = CmdLine::parse(line);
                QCOMPARE(cmd.command, QString(row.name));
                QVERIFY2(cmd.args.size() >= row.required, row.name);
                QVERIFY2(row.repeats || cmd.args.size() <= int(row.args.size()), row.name);
            }
        }
    }

    void blankLinesAreDropped() {
        const BatchText text = BatchText::fromLines({"", "a \\", "", "b", "   ", "c \\", " ", "d"});
        QCOMPARE(text.lines, (QStringList{"a \\", "b", "c \\", " ", "d"}));
        QCOMPARE(text.lineNumber(0), 2);
        QCOMPARE(text.lineNumber(1), 2);  // continued from line 2
        QCOMPARE(text.lineNumber(3), 6);
        QCOMPARE(text.lineNumber(4), 8);
        QCOMPARE(text.lineNumber(5), 0);
        QCOMPARE(text.lineNumber(-1), 0);
    }

    void textsForNames_data() {
        columns<QStringList, QString, QString, QStringList>("set", "line", "made", "unused");
        using L = QStringList;
        const auto row = [](const char* line, const L& set, const char* made,
                            const L& unused = {}) {
            QTest::newRow(line) << set << line << made << unused;
        };
        row("x %SCAN% a%SCAN%%B2%.tif", {"SCAN=7", "B2="}, "x 7 a7.tif");
        row("x 50%AB%CD%EF%", {"CD=%EF%", "EF=1"}, "x 50%AB%EF%EF%", {"EF"});
        row("x %EF%%CD%", {"CD=%EF%", "EF=\\1 $2"}, "x \\1 $2%EF%");
        row("x %ab% %A% %r %1A% %SCAN", {"SCAN=a", "AB=b"}, "x %ab% %A% %r %1A% %SCAN",
            {"SCAN", "AB"});
    }

    void textsForNames() {
        QFETCH(QStringList, set);
        QFETCH(QString, line);
        QVector<NamedText> texts;
        for (const QString& written : set) {
            NamedText text;
            QCOMPARE(readNamedText(written, &text), QString());
            texts << text;
        }
        QStringList lines{"", line};
        QTEST(replaceNamed(texts, &lines), "unused");
        QTEST(lines.last(), "made");
        NamedText text;
        for (const char* bad : {"", "=1", "AB", "A=1", "aB=1", "A B=1", "_A=1", "2A=1", "AB\n=1",
                                "%AB%=1", "AB=1\n", "AB=a\\", "AB=a\\ "}) {
            QVERIFY2(!readNamedText(bad, &text).isEmpty(), bad);
        }
    }

    /// Lines of the file are counted; loops are begun anew.
    void whereABatchGoesOn() {
        const BatchText text = BatchText::fromLines({"a",
                                                     "",
                                                     ":for i %i 1 2",
                                                     "b \\",
                                                     "c",
                                                     ":for j %j 1 2",
                                                     "d",
                                                     ":next j",
                                                     ":next i",
                                                     ":for k %k 1 2",
                                                     "e",
                                                     ":for l %l 1 2",
                                                     "f",
                                                     ":next k",
                                                     "g",
                                                     ":next l",
                                                     ":rem_start",
                                                     ":for m %m 1 2",
                                                     ":rem_end",
                                                     "h",
                                                     ":next m",
                                                     ""});
        const QVector<int> first{1,  3,  3,  3,  3,  3,  3,  3,  3,  10, 10,
                                 10, 10, 10, 10, 10, 17, 18, 19, 20, 21};
        for (int line = 1; line <= first.size(); ++line) {
            const std::optional<int> start = startIndex(text, line);
            QVERIFY(start);
            QCOMPARE(text.lineNumber(*start), first.at(line - 1));
        }
        QVERIFY(!startIndex(text, 22) && !startIndex(text, 99) && !startIndex(BatchText(), 1));
    }

    void filesAreReadAsUtf8() {
        QTemporaryDir dir;
        put(dir.filePath("b.bat"), "\xEF\xBB\xBFsave_image \xE9\x89\x84.png\r\n\r\nlast");
        QStringList lines;
        QVERIFY(readBatchFile(dir.filePath("b.bat"), &lines));
        QCOMPARE(lines,
                 (QStringList{QString::fromUtf8("save_image \xE9\x89\x84.png"), "", "last"}));
        QVERIFY(!readBatchFile(dir.filePath("missing"), &lines));
        QVERIFY(!readBatchFile(dir.path(), &lines));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestCmdLine)
#include "tst_cmdline.moc"
