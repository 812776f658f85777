#include <QDir>

#include "TestMain.h"
#include "files/FileNames.h"

class TestFileNames : public QObject {
    Q_OBJECT

  private slots:
    void names_data() {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("tagged");
        QTest::addColumn<QString>("suffixed");
        const QString here = QDir::currentPath();
        const auto row = [](const QString& base, const QString& tagged, const QString& suffixed) {
            QTest::newRow(qPrintable(base)) << base << tagged << suffixed;
        };
        row("/d/res.png", "/d/res-1-0.png", "/d/res.png");
        row("/d/a.b.png", "/d/a.b-1-0.png", "/d/a.b.png");
        row("/d/res", "/d/res-1-0.", "/d/res.tif");
        row("/d/res.", "/d/res-1-0.", "/d/res.tif");
        row("/d.x/res", "/d.x/res-1-0.", "/d.x/res.tif");
        row("/res.png", "/res-1-0.png", "/res.png");
        row("res.png", here + "/res-1-0.png", here + "/res.png");
    }

    void names() {
        QFETCH(QString, base);
        QTEST(taggedName(base, QStringLiteral("1-0")), "tagged");
        QTEST(withSuffix(base, QStringLiteral("tif")), "suffixed");
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFileNames)
#include "tst_filenames.moc"
