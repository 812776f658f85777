#include "TestMain.h"
#include "files/OriginText.h"

class TestOriginText : public QObject {
    Q_OBJECT

  private slots:
    void written() {
        OriginText origin;
        QCOMPARE(origin.toText(), QString("Tarnwick origin 1\n"));
        origin.entries = {{"source", "Ratio"}, {"none", ""}, {"file", "a\nb\r\nc"}, {"file", "d"}};
        QCOMPARE(origin.toText(),
                 QString("Tarnwick origin 1\nsource = Ratio\nnone = \nfile = a b  c\nfile = d\n"));
        origin.record = QStringList{"load \\", "a.tif"};
        QVERIFY(origin.toText().endsWith("\nfile = d\n\nload \\\na.tif\n"));
        QCOMPARE(origin.value("file"), QString("a\nb\r\nc"));
        QCOMPARE(origin.value("else"), QString());
    }

    void readBack_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("entries");  // key|value
        QTest::addColumn<QStringList>("record");
        using L = QStringList;
        const auto row = [](const char* text, const L& entries, const L& record) {
            QTest::newRow(qPrintable(QString(text).simplified()))
                << QString(text).replace('~', QChar(0)) << entries << record;
        };
        row("Tarnwick origin 1", {}, {});
        row("Tarnwick origin 1\n\na\n", {}, {"a"});
        row("Tarnwick origin 1\nk =  v = w \n", {"k| v = w "}, {});
        row("Tarnwick origin 1\nk =\nl = \n", {"k|", "l|"}, {});
        row("Tarnwick origin 1\r\nk = v\r\n\r\na \\\r\nb\r\n\r\n", {"k|v"}, {"a \\", "b"});
        row("Tarnwick origin 1  \nk = v\n \na\n\nb\n  ~\n~~", {"k|v"}, {"a", "", "b"});
    }

    void readBack() {
        QFETCH(QString, text);
        const auto origin = OriginText::fromText(text);
        QVERIFY(origin);
        QStringList entries;
        for (const auto& entry : origin->entries) {
            entries << entry.first + '|' + entry.second;
        }
        QTEST(entries, "entries");
        QTEST(origin->record, "record");
    }

    void refused_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("why");
        const auto row = [](const char* text, const char* why) {
            QTest::newRow(qPrintable(QString(text).simplified())) << text << why;
        };
        row("", "no origin");
        row("Another origin 1\n", "no origin");
        row("Tarnwick origin 2\n", "newer version");
        row("Tarnwick origin x\n", "no version");
        row("Tarnwick origin 1\nk = v\nline\n", "line 3 ");
    }

    void refused() {
        QFETCH(QString, text);
        QFETCH(QString, why);
        QString said;
        QVERIFY(!OriginText::fromText(text, &said));
        QVERIFY2(said.contains(why) && !said.contains('\n'), qPrintable(said));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestOriginText)
#include "tst_origintext.moc"
