#include <QDir>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "files/FileNames.h"

class TestFileNames : public QObject {
    Q_OBJECT

  private slots:
    void names_data() {
        columns<QString, QString, QString>("base", "tagged", "suffixed");
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
        row("/d/:res.png", "/d/:res-1-0.png", "/d/:res.png");
        row("res.png", here + "/res-1-0.png", here + "/res.png");
    }

    void names() {
        QFETCH(QString, base);
        QTEST(taggedName(base, QStringLiteral("1-0")), "tagged");
        QTEST(withSuffix(base, QStringLiteral("tif")), "suffixed");
    }

    void folders_data() {
        columns<QStringList, QString, QStringList>("files", "folder", "seen");
        using L = QStringList;
        const QString here = QDir::currentPath();
        QTest::newRow("none") << L{} << "" << L{};
        QTest::newRow("one") << L{"/d/e/a.tif"} << "/d/e" << L{"a.tif"};
        QTest::newRow("beside") << L{"/d/i0/a", "/d/i1/a"} << "/d" << L{"i0/a", "i1/a"};
        QTest::newRow("below") << L{"/d/a", "/d/i1/a"} << "/d" << L{"a", "i1/a"};
        QTest::newRow("alike") << L{"/d/run1/a", "/d/run10/a"} << "/d" << L{"run1/a", "run10/a"};
        QTest::newRow("root") << L{"/d/a", "/e/a"} << "/" << L{"d/a", "e/a"};
        QTest::newRow("in the root") << L{"/a", "/e/a"} << "/" << L{"a", "e/a"};
        QTest::newRow("not clean") << L{"/d/./x/../a", "/d//b"} << "/d" << L{"a", "b"};
        QTest::newRow("relative") << L{"a", "b/c"} << here << L{"a", "b/c"};
        QTest::newRow("colon") << L{"/d/:a"} << "/d" << L{"./:a"};
        QTest::newRow("colon beside") << L{"/d/e/b", "/d/:a"} << "/d" << L{"e/b", "./:a"};
    }

    void folders() {
        QFETCH(QStringList, files);
        const QString folder = deepestFolder(files);
        QTEST(folder, "folder");
        QStringList seen;
        for (const QString& file : files) {
            seen << relativeTo(folder, file);
        }
        QTEST(seen, "seen");
        QCOMPARE(relativeTo("/d/e", "/d/f g/a"), QString("../f g/a"));
    }

    void aFolderBehindALink() {
        QTemporaryDir dir;
        const QDir root(dir.path());
        QVERIFY(root.mkpath("far/away/frames") && root.mkdir("refs"));
        QVERIFY(QFile::link(root.filePath("far/away/frames"), root.filePath("frames")));
        const QString file = root.filePath("refs/metal.dat");
        put(file, "1");
        const QString name = relativeTo(root.filePath("frames"), file);
        QCOMPARE(name, QString("../../../refs/metal.dat"));
        QVERIFY(QFile::exists(root.filePath("frames/" + name)));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFileNames)
#include "tst_filenames.moc"
