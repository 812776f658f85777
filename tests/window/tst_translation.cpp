#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>

#include "TestMain.h"
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
        QFile updated(file);
        QVERIFY(updated.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(updated.readAll());
        QVERIFY(text.count("<message") > 200);
        const int unfinished = text.indexOf("unfinished");
        const int source = text.lastIndexOf("<source>", unfinished);
        QVERIFY2(unfinished < 0, qPrintable("not translated: " + text.mid(source, 120)));
        QVERIFY(!text.contains("<translation></translation>"));
    }

    void theResourceIsCompiledIn() {
        QTranslator translator;
        installJapanese(&translator);
        QVERIFY(!translator.isEmpty());
        QCOMPARE(QCoreApplication::translate("Analyzer", "Analyzer"), QString::fromUtf8("解析"));
        QCOMPARE(QCoreApplication::translate("Body", "%n file(s) to read", nullptr, 3),
                 QString::fromUtf8("残り 3 ファイル"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestTranslation)
#include "tst_translation.moc"
