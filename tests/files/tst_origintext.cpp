#include "TestMain.h"
#include "files/OriginText.h"

class TestOriginText : public QObject {
    Q_OBJECT

  private slots:
    void written() {
        OriginText origin;
        QCOMPARE(origin.toText(), QString("Tarnwick origin 1\n"));
        origin.entries = {{"source", "Ratio"}, {"none", ""}, {"file", "a\nb\r\nc"}, {"file", "d"}};
        origin.record = QStringList{"load \\", "a.tif"};
        QCOMPARE(origin.toText(), QString("Tarnwick origin 1\nsource = Ratio\nnone = \n"
                                          "file = a b  c\nfile = d\n\nload \\\na.tif\n"));
        QCOMPARE(origin.value("file"), QString("a\nb\r\nc"));
        QCOMPARE(origin.value("else"), QString());
    }

    void read_data() {
        // found: "key|value;" ... and "/line" ..., or why not
        columns<QString, QString>("text", "found");
        const auto row = [](const char* text, const char* found) {
            QTest::newRow(qPrintable(QString(text).simplified()))
                << QString(text).replace('~', QChar(0)) << found;
        };
        row("Tarnwick origin 1", "");
        row("Tarnwick origin 1\n\na\n", "/a");
        row("Tarnwick origin 1\nk =  v = w \n", "k| v = w ;");
        row("Tarnwick origin 1\nk =\nl = \n", "k|;l|;");
        row("Tarnwick origin 1\r\nk = v\r\r\n\r\na \\\r\nb\r\n\r\n", "k|v;/a \\/b");
        row("Tarnwick origin 1  \nk = v\n \na\n\nb\n  ~\n~~", "k|v;/a//b");
        row("", "no origin in it");
        row("Another origin 1\n", "no origin in it");
        row("Tarnwick origin 2\n", "its origin was written by a newer version");
        row("Tarnwick origin x\n", "its origin has no version");
        row("Tarnwick origin 1\nk = v\nline\n", "line 3 of its origin is no \"key = value\"");
    }

    void read() {
        QFETCH(QString, text);
        QString found;
        if (const auto origin = OriginText::fromText(text, &found)) {
            for (const auto& entry : origin->entries) {
                found += entry.first + '|' + entry.second + ';';
            }
            for (const QString& line : origin->record) {
                found += '/' + line;
            }
        }
        QTEST(found, "found");
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestOriginText)
#include "tst_origintext.moc"
