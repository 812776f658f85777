#include "TestMain.h"
#include "batch/LineItems.h"

class TestLineItems : public QObject {
    Q_OBJECT

  private slots:
    void items_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("rest");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* line, const char* item, const char* rest,
                            const char* message = "") {
            QTest::newRow(line) << line << item << rest << message;
        };
        row("  abc def", "abc", " def");
        row("abc\tdef", "abc", "\tdef");
        row("\"a b\" c", "a b", " c");
        row("\"\"", "", "");
        row("\"abc", "abc", "",
            "In a line [\"abc] item is started from quote but not ended by quote");
        row("abc\"", "abc\"", "",
            "In a line [abc\"] item is started from not quote but ended by quote");
        row("abc\" def", "abc\"", " def");
        row(" \t ", "", "");
        row("", "", "");
    }

    void items() {
        QFETCH(QString, line);
        QFETCH(QString, message);
        if (!message.isEmpty()) {
            QTest::ignoreMessage(QtDebugMsg, qPrintable(message));
        }
        QString item = "before";
        QTEST(takeItem(line, &item), "rest");
        QTEST(item, "item");
    }

    void commentsAndContinuations() {
        QCOMPARE(stripComment("x = 1 # note"), QString("x = 1 "));
        QCOMPARE(stripComment("\"a # b\""), QString("\"a "));
        QVERIFY(isBlank("   # only a note"));
        QVERIFY(!isBlank(" x # note"));
        QString line = "load file \\";
        QVERIFY(hasContinuation(line));
        QCOMPARE(line, QString("load file "));
        line = "load file \\ \t";
        QVERIFY(hasContinuation(line));
        QCOMPARE(line, QString("load file "));
        line = "a \\ b";
        QVERIFY(!hasContinuation(line));
        QCOMPARE(line, QString("a \\ b"));
        QCOMPARE(withoutContinuation("   "), QString("   "));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestLineItems)
#include "tst_lineitems.moc"
