#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTranslator>

#include "TestMain.h"
#include "measurement/RecordLines.h"
#include "window/Translation.h"

class TestTranslation : public QObject {
    Q_OBJECT

  private slots:
    /// A new or changed text must be translated before it is committed.
    void everySourceTextIsTranslated() {
        QTemporaryDir dir;
        const QString file = dir.filePath("Tarnwick_ja_JP.ts");
        QVERIFY(QFile::copy(TRANSLATION_FILE, file));
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
        QProcess lupdate;
        lupdate.start(LUPDATE, {"-silent", "-locations", "none", "-no-obsolete", "-recursive",
                                SOURCE_FOLDER, "-ts", file});
        QVERIFY2(lupdate.waitForFinished(60000), "lupdate does not run");
        QCOMPARE(lupdate.exitCode(), 0);
        // It says which texts it cannot take, as tr() of no class.
        QCOMPARE(QString::fromLocal8Bit(lupdate.readAllStandardError()), QString());
        QFile updated(file);
        QVERIFY(updated.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(updated.readAll());
        QVERIFY(text.count("<message") > 200);
        const int unfinished = text.indexOf("unfinished");
        const int source = text.lastIndexOf("<source>", unfinished);
        QVERIFY2(unfinished < 0, qPrintable("not translated: " + text.mid(source, 120)));
        QVERIFY(!text.contains("<translation></translation>"));
    }

    /// What is put in for %1 and %n is in both, and who has a key to press has one in Japanese.
    void placesAndKeysAreKept() {
        const auto marks = [](const QString& text) {
            QStringList found;
            QRegularExpression mark("%[0-9n]|&amp;(?=[0-9A-Za-z])");
            for (auto all = mark.globalMatch(text); all.hasNext();) {
                found << all.next().captured();
            }
            found.sort();
            return found;
        };
        QFile file(TRANSLATION_FILE);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QRegularExpression message(
            "<source>(.*?)</source>.*?<translation>\\s*(?:<numerusform>)?(.*?)</",
            QRegularExpression::DotMatchesEverythingOption);
        const QString text = QString::fromUtf8(file.readAll());
        for (auto all = message.globalMatch(text); all.hasNext();) {
            const QRegularExpressionMatch pair = all.next();
            QVERIFY2(marks(pair.captured(1)) == marks(pair.captured(2)),
                     qPrintable(pair.captured(1)));
        }
    }

    void theResourceIsCompiledIn() {
        QTranslator translator;
        installJapanese(&translator);
        QVERIFY(!translator.isEmpty());
        QCOMPARE(QCoreApplication::translate("Analyzer", "Analyzer"), QString::fromUtf8("解析"));
        QCOMPARE(QCoreApplication::translate("StatusLine", "%n file(s) to read", nullptr, 3),
                 QString::fromUtf8("残り 3 ファイル"));
        // Saved files carry the English one.
        const RecordLines none = RecordLines::none("a batch cannot carry the name %1", "a%1.tif");
        QCOMPARE(none.whyNot, QString("a batch cannot carry the name a%1.tif"));
        QCOMPARE(none.whyNotInWindow, QString::fromUtf8("バッチには書けない名前です: a%1.tif"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestTranslation)
#include "tst_translation.moc"
