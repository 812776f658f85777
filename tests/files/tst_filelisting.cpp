#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "files/FileListing.h"

class TestFileListing : public QObject {
    Q_OBJECT

  private slots:
    /// A scan across a power of ten must come in ascending energy.
    void filesComeInOrderOfTheirNumbers() {
        QTemporaryDir dir;
        const QStringList expected{"Zn-9600eV.tif",   "Zn-9700_5eV.tif", "Zn-9700_25eV.tif",
                                   "Zn-010000eV.tif", "Zn-10000eV.tif",  "Zn-10100eV.tif"};
        QStringList made = expected;
        std::reverse(made.begin(), made.end());
        for (const QString& name : made + QStringList{"notes.txt"}) {
            put(dir.filePath(name), {});
        }
        QVERIFY(QDir(dir.path()).mkdir("Zn-1eV.tif"));  // a directory is no image
        QStringList names = listImageFiles(dir.path(), {"*.tif", "*.tiff"});
        for (QString& name : names) {
            QVERIFY(name.startsWith(dir.path() + '/'));
            name = name.mid(dir.path().size() + 1);
        }
        QCOMPARE(names, expected);
        QCOMPARE(listImageFiles(dir.path(), {}).size(), 7);
        QVERIFY(listImageFiles(dir.filePath("missing"), {}).isEmpty());
    }

    void longRunsOfDigitsAreCompared() {
        QVERIFY(comesBefore("a99999999999999999999", "a100000000000000000000"));
        QVERIFY(!comesBefore("a1", "a1"));
        QVERIFY(comesBefore("a", "a1"));
        QVERIFY(comesBefore("a01", "a1") != comesBefore("a1", "a01"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFileListing)
#include "tst_filelisting.moc"
