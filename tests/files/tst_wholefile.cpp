#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "files/FilesTogether.h"
#include "files/InputFile.h"
#include "files/LeftOver.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

bool write(const QByteArray& name, const QByteArray& content) {
    WholeFile file(name);
    return file.write(content.constData(), std::size_t(content.size())) && file.putInPlace();
}

struct stat stateOf(const QByteArray& name) {
    struct stat state {};
    ::lstat(name.constData(), &state);
    return state;
}

}  // namespace

/// What may stand under a name, for every kind of file: tests/outcomes/tst_targets.
class TestWholeFile : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QByteArray path(const QByteArray& name) const {
        return QFile::encodeName(m_dir->path()) + '/' + name;
    }
    QStringList names() const {
        return QDir(m_dir->path())
            .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    }

  private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void namesOfTheirOwn() {
        put(path("x.tif.part"), "another program's");
        const QByteArray longest(255, 'n');
        const QByteArray letters = QByteArray(u8"\u93c4").repeated(80);
        for (const QByteArray& name : {QByteArray("x.tif"), longest, letters}) {
            const WholeFile file(path(name));
            QVERIFY(file.isMade());
            const QByteArray part = file.part().mid(path("").size());
            QVERIFY(isNameOfUnfinished(part));
            QVERIFY(QFile::encodeName(QFile::decodeName(part)) == part);  // no half letters
            const QByteArray start = '.' + name.left(5);
            QVERIFY(part.startsWith(start) && part.size() <= 255);
        }
        QCOMPARE(names(), QStringList("x.tif.part"));
        QVERIFY(write(path(longest), "long"));
        QCOMPARE(contentOf(path("x.tif.part")), QByteArray("another program's"));
    }

    /// Between the begin and the end of the writing.
    void namesHaveNoZero() {
        put(path("x"), "old");
        QVERIFY(!write(path(QByteArray("x\0.tif", 6)), "new"));
        QCOMPARE(::symlink("x", path("link").constData()), 0);
        QVERIFY(!write(path(QByteArray("link\0.tif", 9)), "new"));
        QCOMPARE(contentOf(path("x")), QByteArray("old"));
        QCOMPARE(names(), QStringList({"link", "x"}));
        QCOMPARE(openInput(path(QByteArray("x\0.tif", 6))), -1);
        QCOMPARE(errno, ENOENT);
    }

    void whatComesMeanwhile() {
        const auto writeWhile = [&](const auto& happens) {
            WholeFile file(path("file"));
            return file.write("new", 3) && happens() && file.putInPlace();
        };
        const QByteArray name = path("file");
        QVERIFY(!writeWhile([&] { return ::mkfifo(name.constData(), 0600) == 0; }));
        QVERIFY(S_ISFIFO(stateOf(name).st_mode) && ::unlink(name.constData()) == 0);
        QVERIFY(!writeWhile([&] { return ::symlink("other", name.constData()) == 0; }));
        QVERIFY(S_ISLNK(stateOf(name).st_mode) && ::unlink(name.constData()) == 0);
        QVERIFY(!writeWhile([&] { return ::mkdir(name.constData(), 0700) == 0; }));
        QVERIFY(S_ISDIR(stateOf(name).st_mode) && ::rmdir(name.constData()) == 0);
        QVERIFY(writeWhile([&] {
            put(name, "old");
            return ::chmod(name.constData(), 0604) == 0;
        }));
        QCOMPARE(contentOf(name), QByteArray("new"));
        QCOMPARE(int(stateOf(name).st_mode & 07777), 0604);
        QCOMPARE(names(), QStringList("file"));
    }

    void ownerAndAccessListStay() {
        if (::geteuid() != 0) {
            QSKIP("root alone may give files to others");
        }
        const QByteArray name = path("file");
        put(name, "old");
        QCOMPARE(::chown(name.constData(), 1234, 2345), 0);
        QCOMPARE(::chmod(name.constData(), 04750), 0);
        // user::rwx, user:77:r--, group::r-x, mask::r-x, other::---
        const QByteArray list = QByteArray::fromHex(
            "02000000"
            "01000700ffffffff"
            "020004004d000000"
            "04000500ffffffff"
            "10000500ffffffff"
            "20000000ffffffff");
        constexpr char acl[] = "system.posix_acl_access";
        const bool hasLists =
            ::setxattr(name.constData(), acl, list.constData(), std::size_t(list.size()), 0) == 0;
        QVERIFY(write(name, "new"));
        const struct stat now = stateOf(name);
        QCOMPARE(contentOf(name), QByteArray("new"));
        QCOMPARE(now.st_uid, uid_t(1234));
        QCOMPARE(now.st_gid, gid_t(2345));
        QCOMPARE(int(now.st_mode & 07777), 04750);
        QByteArray kept(list.size(), 0);
        if (hasLists) {
            QCOMPARE(::getxattr(name.constData(), acl, kept.data(), std::size_t(kept.size())),
                     ssize_t(list.size()));
            QCOMPARE(kept, list);
        }
    }

    /// Space that comes back makes no file whole from which something is missing.
    void whatFailsOnceFails() {
        const QString name = QFile::decodeName(path("file"));
        put(name, "old");
        for (const int size : {10, 100000, 1000000}) {
            WholeDevice file(name);
            QVERIFY(file.open());
            QTextStream text(&file);
            {
                const FullDisk full(5);
                text << QString(size, 'x');
                text.flush();
                file.seek(file.pos());
            }
            file.write("y");
            QVERIFY(!file.putInPlace(text));
        }
        {
            WholeDevice file(name);
            QVERIFY(file.open());
            QTextStream text(&file);
            text << "in the buffer";
            const FullDisk full(5);
            QVERIFY(!file.putInPlace(text));
        }
        QCOMPARE(contentOf(name), QByteArray("old"));
        QCOMPARE(names(), QStringList("file"));
        WholeDevice file(name);
        QVERIFY(file.open() && file.write(QByteArray(70000, 'a')) == 70000);
        QVERIFY(file.write("bcd") == 3 && file.size() == 70003 && file.seek(1));
        QVERIFY(file.write("X") == 1 && file.size() == 70003 && file.putInPlace());
        QVERIFY(!file.isOpen() && !file.putInPlace());
        QCOMPARE(contentOf(name), "aX" + QByteArray(69998, 'a') + "bcd");
    }

    void filesTogether() {
        QByteArrayList all;
        {
            FilesTogether together;
            for (int i = 0; i < 100; ++i) {  // more than are kept waiting
                all << path(QByteArray::number(i));
                together.callThem(QString::number(i));
                QVERIFY(write(all.last(), "new"));
                if (i == 98) {
                    QCOMPARE(::mkdir(all.last().constData(), 0700), 0);
                }
            }
            QVERIFY(!QFile::exists(QFile::decodeName(all.last())));
            QVERIFY(!together.finish());
            QCOMPARE(together.failures(), QStringList("98"));
            QVERIFY(write(path("left"), "never finished"));
            {
                FilesTogether inner;
                QVERIFY(write(path("inner"), "new") && inner.finish());
            }
            QCOMPARE(contentOf(path("inner")), QByteArray("new"));
        }
        QVERIFY(write(path("single"), "new"));
        QCOMPARE(names().size(), 102);
        QVERIFY(std::all_of(all.begin(), all.end(), [&](const QByteArray& name) {
            return (name == path("98")) != (contentOf(name) == "new");
        }));
    }

    void whatWasLeftIsRemoved() {
        const auto leave = [&](const char* name) {
            put(path(name), "left");
            QFile file(QFile::decodeName(path(name)));
            QVERIFY(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::currentDateTime().addDays(-2),
                                     QFileDevice::FileModificationTime));
        };
        const QStringList others{".a.0123456789AB.tarnwick-part",
                                 ".a.0123456789a.tarnwick-part",
                                 "a.0123456789ab.tarnwick-part",
                                 ".a.0123456789ab.tarnwick-part~",
                                 ".a.tarnwick-part",
                                 "a.rows.x.part",
                                 "target"};
        for (const QString& name : others) {
            leave(name.toLatin1().constData());
        }
        const QByteArray young = ".a.000000000000.tarnwick-part";
        put(path(young), "young");
        QCOMPARE(::symlink("target", path(".l.0123456789ab.tarnwick-part").constData()), 0);
        QCOMPARE(::mkfifo(path(".p.0123456789ab.tarnwick-part").constData(), 0600), 0);
        const WholeFile inWork(path("in work"));  // cleans the folder, in which is nothing yet
        leave(inWork.part().mid(path("").size()).constData());
        QStringList expected = names();
        leave(".a.0123456789ab.tarnwick-part");
        QVERIFY(write(path("b"), "once a folder and run"));
        expected << "b";
        QCOMPARE(names().size(), expected.size() + 1);
        removeLeftOver(path(""));
        expected.sort();
        QStringList now = names();
        now.sort();
        QCOMPARE(now, expected);
    }

    /// As from a signal handler at the end of the program.
    void unfinishedFilesAtTheEnd() {
        put(path("a"), "old");
        const pid_t child = ::fork();
        if (child == 0) {
            WholeFile a(path("a"));
            auto together = std::make_unique<FilesTogether>();
            const bool isWritten = write(path("b"), "waits");
            std::signal(SIGTERM, [](int) { removeUnfinishedFiles(); });
            std::raise(SIGTERM);
            const bool isFinished = together->finish();
            together.reset();
            const bool isMade = WholeFile(path("c")).isMade();
            ::_exit(isWritten && !isFinished && !a.putInPlace() && !isMade ? 0 : 1);
        }
        int status = -1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(names(), QStringList("a"));
        QCOMPARE(contentOf(path("a")), QByteArray("old"));
    }

    void twoWritersOfOneName() {
        const QByteArray name = path("both");
        put(name + ".part", "a user's own");
        std::atomic<int> failed{0};
        std::atomic<int> atWork{2};
        const auto work = [&](char letter) {
            for (int i = 0; i < 150; ++i) {
                failed += write(name, QByteArray(50000, letter)) ? 0 : 1;
            }
            --atWork;
        };
        QVERIFY(write(name, QByteArray(50000, 'a')));
        std::thread a(work, 'a');
        std::thread b(work, 'b');
        int torn = 0;
        for (int looks = 0; atWork > 0 || looks < 300; ++looks) {
            const QByteArray content = contentOf(name);
            torn += content == QByteArray(50000, 'a') || content == QByteArray(50000, 'b') ? 0 : 1;
        }
        a.join();
        b.join();
        QCOMPARE(torn, 0);
        QCOMPARE(int(failed), 0);
        QCOMPARE(contentOf(name + ".part"), QByteArray("a user's own"));
        QCOMPARE(names(), (QStringList{"both", "both.part"}));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestWholeFile)
#include "tst_wholefile.moc"
