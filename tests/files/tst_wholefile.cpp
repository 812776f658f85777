#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QSaveFile>
#include <QTemporaryDir>
#include <atomic>
#include <thread>

#include "Files.h"
#include "TestMain.h"
#include "files/WholeFile.h"

class TestWholeFile : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QByteArray path(const char* name) const { return QFile::encodeName(m_dir.path()) + '/' + name; }

    static bool write(const QByteArray& name, const QByteArray& content) {
        WholeFile file(name);
        if (!file.isMade()) {
            return false;
        }
        put(QFile::decodeName(file.part()), content);
        return file.putInPlace();
    }
    static bool writeByQt(const QByteArray& name, const QByteArray& content) {
        QSaveFile file(QFile::decodeName(name));
        return openBeside(file) && file.write(content) == content.size() && putInPlace(file);
    }

    QStringList names() const {
        return QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }

  private slots:
    void linksAndPermissionsStay() {
        QCOMPARE(::symlink("second", path("first").constData()), 0);
        QCOMPARE(::symlink("file", path("second").constData()), 0);  // which is to come
        for (const auto writer : {write, writeByQt}) {
            QVERIFY(writer(path("first"), "new"));
            QCOMPARE(contentOf(path("file")), QByteArray("new"));
            QCOMPARE(names(), (QStringList{"file", "first", "second"}));
            QVERIFY(QFileInfo(path("second")).isSymLink());
            QCOMPARE(::chmod(path("file").constData(), 0640), 0);
            QVERIFY(writer(path("first"), "newer"));
            struct stat now {};
            QCOMPARE(::stat(path("file").constData(), &now), 0);
            QCOMPARE(int(now.st_mode & 07777), 0640);
            QVERIFY(QFile::remove(path("file")));
        }
        QCOMPARE(::mkdir(path("folder").constData(), 0700), 0);
        QCOMPARE(::mkfifo(path("pipe").constData(), 0600), 0);
        QCOMPARE(::symlink("pipe", path("to pipe").constData()), 0);
        QCOMPARE(::symlink("turn", path("turn").constData()), 0);
        const QStringList before = names();
        for (const auto writer : {write, writeByQt}) {
            for (const char* name : {"folder", "pipe", "to pipe", "turn", "none/file"}) {
                QVERIFY2(!writer(path(name), "new"), name);
            }
        }
        QCOMPARE(names(), before);
        QVERIFY(!QFileInfo(path("pipe")).isFile());
    }

    void anUnfinishedFileLeavesNothing() {
        put(path("file.old"), "old");
        put(path("file.old.part"), "another program's");
        {
            const WholeFile file(path("file.old"));
            QVERIFY(file.isMade());
        }
        QVERIFY(write(path("file.old"), "new"));
        QCOMPARE(contentOf(path("file.old")), QByteArray("new"));
        QCOMPARE(contentOf(path("file.old.part")), QByteArray("another program's"));
        QVERIFY(write(path(QByteArray(255, 'n').constData()), "long"));
        QCOMPARE(QDir(m_dir.path()).entryList({"*.part"}), QStringList("file.old.part"));
    }

    void twoWritersOfOneName() {
        const QByteArray name = path("both");
        std::atomic<int> failed{0};
        const auto work = [&](char letter) {
            for (int i = 0; i < 200; ++i) {
                failed += write(name, QByteArray(5000, letter)) ? 0 : 1;
            }
        };
        std::thread a(work, 'a');
        std::thread b(work, 'b');
        a.join();
        b.join();
        QCOMPARE(int(failed), 0);
        const QByteArray content = contentOf(name);
        QVERIFY(content == QByteArray(5000, 'a') || content == QByteArray(5000, 'b'));
        QVERIFY(QDir(m_dir.path()).entryList({"both.*"}).isEmpty());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestWholeFile)
#include "tst_wholefile.moc"
