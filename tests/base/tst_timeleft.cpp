#include <QCoreApplication>
#include <cmath>

#include "TestMain.h"
#include "base/TimeLeft.h"

class TestTimeLeft : public QObject {
    Q_OBJECT

  private slots:
    void nothingToGoBy() {
        TimeLeft left;
        left.note(0.0, 0);
        left.note(0.5, 300);
        QVERIFY(!left.seconds());  // too soon
        left.start();
        left.note(0.5, 5000);
        left.note(0.5, 9000);
        QVERIFY(!left.seconds());  // it does not move
    }

    /// Second halves that are three times as slow or as fast: right before, near the truth some
    /// seconds after, and never jumping in between.
    void followsTheSpeed() {
        for (const double factor : {1.0, 3.0, 1.0 / 3.0}) {
            TimeLeft left;
            const double half = 20000.0;  // ms
            const double all = half * (1.0 + factor);
            double before = -1.0;
            for (int t = 0; t < static_cast<int>(all); t += 40) {
                const double done =
                    t < half ? 0.5 * t / half : 0.5 + 0.5 * (t - half) / half / factor;
                left.note(done, 1000 + t);
                const auto seconds = left.seconds();
                const bool isEarly = t < half;
                const double truth = isEarly ? 2.0 * (half - t) + t : all - t;
                if (isEarly ? t > 1000 : t > half + 13000) {
                    QVERIFY2(std::abs(*seconds - truth * 1e-3) < 0.1 + 0.15 * truth * 1e-3,
                             qPrintable(QString("%1 %2 %3").arg(t).arg(*seconds).arg(truth)));
                }
                QVERIFY(before < 0.0 || std::abs(*seconds - before) < 1.5);
                before = seconds.value_or(-1.0);
            }
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestTimeLeft)
#include "tst_timeleft.moc"
