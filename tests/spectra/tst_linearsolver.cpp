#include <cmath>

#include "SameBits.h"
#include "TestMain.h"
#include "spectra/LinearSolver.h"

class TestLinearSolver : public QObject {
    Q_OBJECT

  private slots:
    void systems_data() {
        columns<QVector<double>, QVector<double>, QVector<double>>("a", "b", "x");
        using V = QVector<double>;
        QTest::newRow("1") << V{4} << V{8} << V{2};
        QTest::newRow("needs a row exchange") << V{0, 2, 1, 1} << V{6, 5} << V{2, 3};
        QTest::newRow("two exchanges") << V{0, 1, 2, 1, 2, 0, 4, 0, 1} << V{8, 5, 7} << V{1, 2, 3};
        QTest::newRow("zero matrix: pivots become 1") << V{0, 0, 0, 0} << V{0, 0} << V{0, 0};
        // rows 2 4 | 6 first, then 1 2 | 3 less half of it: 0 0 | 0 with a pivot of 1
        QTest::newRow("singular: second pivot becomes 1") << V{1, 2, 2, 4} << V{3, 6} << V{3, 0};
    }

    void systems() {
        QFETCH(QVector<double>, a);
        QFETCH(QVector<double>, b);
        QFETCH(QVector<double>, x);
        QVector<double> found(b.size());
        solveLinear(a.constData(), b.constData(), b.size(), found.data());
        for (int i = 0; i < x.size(); ++i) {
            QVERIFY2(std::abs(found[i] - x[i]) < 1e-12, qPrintable(QString::number(found[i])));
        }
    }

    /// Also in place, below and above the size that is solved without an allocation.
    void aDecompositionServesInPlace() {
        for (const int n : {3, 20}) {
            double a[400];
            double b[20] = {};
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < n; ++j) {
                    a[i * n + j] =
                        1.0 / (1.0 + ((i * 7 + j * 3) % 11)) + (j == n - 1 - i ? 5.0 : 0.0);
                    b[i] += a[i * n + j] * (j - 4);
                }
            }
            double x[20];
            solveLinear(a, b, n, x);
            LuDecomposition lu;
            lu.decompose(a, n);
            lu.solve(b, b);
            for (int i = 0; i < n; ++i) {
                QVERIFY(std::abs(x[i] - (i - 4)) < 1e-10);
                QVERIFY(same(b[i], x[i]));
            }
        }
    }

    void notANumberRunsThrough() {
        const double nan = std::nan("");
        const double a[] = {nan, 1, nan, 2};
        const double b[] = {1, 2};
        double x[2];
        solveLinear(a, b, 2, x);
        QVERIFY(std::isnan(x[0]));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestLinearSolver)
#include "tst_linearsolver.moc"
