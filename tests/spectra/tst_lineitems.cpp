#include "TestMain.h"
#include "spectra/LineItems.h"

class TestLineItems : public QObject {
    Q_OBJECT

  private slots:
    void items_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("rest");
        QTest::addColumn<QString>("message");
        QTest::newRow("plain") << "  abc def"
                               << "abc"
                               << " def"
                               << "";
        QTest::newRow("tab") << "abc\tdef"
                             << "abc"
                             << "\tdef"
                             << "";
        QTest::newRow("quoted") << "\"a b\" c"
                                << "a b"
                                << " c"
                                << "";
        QTest::newRow("empty quoted") << "\"\""
                                      << ""
                                      << ""
                                      << "";
        QTest::newRow("quote not closed")
            << "\"abc"
            << "abc"
            << ""
            << "In a line [\"abc] item is started from quote but not ended by quote";
        QTest::newRow("quote not opened, last item")
            << "abc\""
            << "abc\""
            << ""
            << "In a line [abc\"] item is started from not quote but ended by quote";
        QTest::newRow("quote not opened, not last") << "abc\" def"
                                                    << "abc\""
                                                    << " def"
                                                    << "";
        QTest::newRow("white space only") << " \t "
                                          << ""
                                          << ""
                                          << "";
        QTest::newRow("empty") << ""
                               << ""
                               << ""
                               << "";
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
