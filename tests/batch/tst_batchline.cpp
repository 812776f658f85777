#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "batch/BatchLine.h"
#include "batch/BatchText.h"
#include "batch/CmdLine.h"

namespace {

/// Texts of a few letters that mean something to the splitter, alone and together.
QStringList nastyTexts() {
    const QStringList pieces = {"a",      "\"",     "\\", " ",      "\t",     "#",
                                ":",      "=",      "%r", "\u00E9", "\u9244", "\u3000",
                                "\u00A0", "\u0085", "\v", "\f",     "\x1c"};
    QStringList texts = {""};
    for (const QString& a : pieces) {
        texts << a;
        for (const QString& b : pieces) {
            texts << a + b;
            for (const QString& c : pieces) {
                texts << a + b + c;
            }
        }
    }
    return texts;
}

/// What the batch makes of physical lines that went through a file.
CmdLine throughAFile(const QString& name, const QStringList& lines) {
    put(name, lines.join('\n').toUtf8() + '\n');
    QStringList read;
    readBatchFile(name, &read);
    const BatchText text = BatchText::fromLines(read);
    int index = 0;
    const CmdLine parsed = CmdLine::parse(readLogicalLine(text.lines, &index));
    return index + 1 == text.lines.size() ? parsed : CmdLine();
}

void silent(QtMsgType, const QMessageLogContext&, const QString&) {}

}  // namespace

class TestBatchLine : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

  private slots:
    void whatIsWrittenIsRead() {
        const QString name = m_dir.filePath("b.bat");
        QStringList all;
        QStringList refusedTexts;
        qInstallMessageHandler(silent);  // quotes at the end of a line are said each time
        for (const QString& text : nastyTexts()) {
            QString refused;
            const auto lines = batchLine("word", {text}, &refused);
            QCOMPARE(bool(lines), bool(batchItem(text)));
            if (!lines) {
                QCOMPARE(refused, text);
                refusedTexts << text;
                continue;
            }
            all << text;
            int index = 0;
            const CmdLine parsed = CmdLine::parse(readLogicalLine(*lines, &index));
            QCOMPARE(parsed.command, QString("word"));
            QCOMPARE(parsed.args, QStringList{text});
        }
        // Many of them in a line, each at some time at the end or the start of a physical one.
        for (int i = 0; i < all.size(); i += 7) {
            const QStringList args = all.mid(i, 60);
            const auto lines = batchLine("word", args);
            const CmdLine parsed = throughAFile(name, *lines);
            QCOMPARE(parsed.command, QString("word"));
            QCOMPARE(parsed.args, args);
            for (const QString& line : *lines) {
                QVERIFY2(line.size() <= 100, qPrintable(line));
            }
        }
        qInstallMessageHandler(nullptr);
        // Only what has no way to stand in a line is refused.
        for (const QString& text : qAsConst(refusedTexts)) {
            QVERIFY2(text.isEmpty() || text.contains('"'), qPrintable(text));
        }
    }

    void plainNamesStayAsTheyAre() {
        QCOMPARE(batchItem("a/b.tif").value_or("none"), QString("a/b.tif"));
        QCOMPARE(batchItem("5\"").value_or("none"), QString("5\""));
        for (const uint refused : {0x0Au, 0x0Du, 0x2028u, 0xD800u, 0u}) {
            QVERIFY2(!batchItem(QString("a") + QChar(refused)),
                     qPrintable(QString::number(refused)));
        }
    }

    void longLines() {
        const QString name(150, 'n');
        QCOMPARE(*batchLine("load", {"NEW"}), QStringList{"load NEW"});
        QCOMPARE(*batchLine("load", {name, "b"}), (QStringList{"load \\", name + " \\", "b"}));
        QString refused;
        QVERIFY(!batchLine("load", {"a", "b\nc", ""}, &refused));
        QCOMPARE(refused, QString("b\nc"));
        QVERIFY(!batchLine("", {"a"}));
        QVERIFY(!batchLine(":FOR", {"a b", "%r", "0", "1"}));
        QVERIFY(batchLine(":for", {"a", "%r", "0", "1"}));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestBatchLine)
#include "tst_batchline.moc"
