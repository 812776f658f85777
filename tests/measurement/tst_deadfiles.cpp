#include <QTemporaryDir>

#include "DeadFile.h"
#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "base/Worker.h"
#include "measurement/Measurement.h"

/// Files that never answer hold up neither who asks for them nor what is loaded in their place.
class TestDeadFiles : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QStringList m_good;

    static void load(Measurement* measurement, Work work, const QStringList& files) {
        if (work == Work::LoadDark) {
            measurement->loadDark(files);
        } else {
            measurement->load(work == Work::LoadI1 ? StackId::I1 : StackId::I0, files, true);
        }
    }

  private slots:
    void initTestCase() {
        m_good = writeTinyStack(m_dir.path(), "a", 4, 3, {7100.0, 7110.0, 7120.0},
                                [](int i, int x, int y) { return quint16(100 + i + x + y); });
        QCOMPARE(m_good.size(), 3);
    }

    void anotherLoadTakesTheirPlace_data() {
        columns<int, bool, bool>("number", "isFirst", "isStopped");
        QTest::newRow("I1, first, replaced") << int(Work::LoadI1) << true << false;
        QTest::newRow("I1, first, stopped") << int(Work::LoadI1) << true << true;
        QTest::newRow("I0, second, stopped") << int(Work::LoadI0) << false << true;
        QTest::newRow("dark, second, replaced") << int(Work::LoadDark) << false << false;
    }

    void anotherLoadTakesTheirPlace() {
        QFETCH(int, number);
        const auto work = static_cast<Work>(number);
        QFETCH(bool, isFirst);
        QFETCH(bool, isStopped);
        const QString name = m_dir.filePath("b-7105eV.tif");
        put(name, "II*");
        {
            const DeadFile dead(name);
            if (!dead.isDead()) {
                QSKIP("no leases on this file system");
            }
            Measurement measurement;
            QVector<Outcome> outcomes;
            connect(&measurement, &Measurement::ended, this, [&](Work ended, const Outcome& how) {
                outcomes << (ended == work ? how : Outcome::failure("another"));
            });
            QStringList files = m_good;
            files.insert(isFirst ? 0 : 1, name);
            load(&measurement, work, files);
            QVERIFY(measurement.isAtWork(work));
            QTRY_VERIFY_WITH_TIMEOUT(dead.isAwaited(), 20000);
            if (isStopped) {
                measurement.stopLoading();
                QCOMPARE(outcomes.size(), 1);
                QVERIFY(outcomes.takeFirst().failed());
                QVERIFY(!measurement.isAtWork(work));
            }
            load(&measurement, work, m_good);
            QTRY_VERIFY_WITH_TIMEOUT(!measurement.isAtWork(work), 20000);
            QVERIFY(Worker::isAnyLeft());  // the file has not answered
            QVERIFY(!outcomes.isEmpty() && !outcomes.last().failed());
            const int loaded = work == Work::LoadDark ? measurement.dark().loaded()
                               : work == Work::LoadI1 ? measurement.stack(StackId::I1).size()
                                                      : measurement.stack(StackId::I0).size();
            QCOMPARE(loaded, 3);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!Worker::isAnyLeft(), 60000);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestDeadFiles)
#include "tst_deadfiles.moc"
