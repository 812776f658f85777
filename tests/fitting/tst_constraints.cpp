#include <cmath>
#include <random>

#include "TestMain.h"
#include "fitting/Constraints.h"

using Constraints = FitRule::Constraints;

/// Least squares with held coefficients against trying every choice of what is held.
class TestConstraints : public QObject {
    Q_OBJECT

  private:
    using Numbers = std::vector<double>;

    static double objective(const Numbers& a, const Numbers& b, const Numbers& c) {
        double sum = 0.0;
        for (std::size_t i = 0; i < c.size(); ++i) {
            double product = 0.0;
            for (std::size_t j = 0; j < c.size(); ++j) {
                product += a[i * c.size() + j] * c[j];
            }
            sum += c[i] * (0.5 * product - b[i]);
        }
        return sum;
    }

    /// The least of all choices that are allowed, with a multiplier for the sum.
    static double leastOfAll(const Numbers& a, const Numbers& b, int leading, bool hasSum,
                             bool canHold) {
        const int n = static_cast<int>(b.size());
        double least = 1e300;
        for (unsigned held = 0; held < (canHold ? 1U << (n - leading) : 1U); ++held) {
            const int size = n + (hasSum ? 1 : 0);
            Numbers matrix(static_cast<std::size_t>(size * size)),
                right(static_cast<std::size_t>(size));
            for (int i = 0; i < n; ++i) {
                const bool isHeld = i >= leading && ((held >> (i - leading)) & 1U) != 0;
                for (int j = 0; j < n && !isHeld; ++j) {
                    matrix[std::size_t(i * size + j)] = a[std::size_t(i * n + j)];
                }
                matrix[std::size_t(i * size + i)] += isHeld ? 1.0 : 0.0;
                right[std::size_t(i)] = isHeld ? 0.0 : b[std::size_t(i)];
                if (hasSum) {
                    matrix[std::size_t(i * size + n)] = isHeld ? 0.0 : 1.0;
                    matrix[std::size_t(n * size + i)] = 1.0;
                    right[std::size_t(n)] = 1.0;
                }
            }
            Numbers c(static_cast<std::size_t>(size));
            LuDecomposition lu;
            lu.decompose(matrix.data(), size);
            lu.solve(right.data(), c.data());
            c.resize(std::size_t(n));
            double sum = 0.0;
            bool isAllowed = true;
            for (int i = leading; i < n; ++i) {
                sum += c[std::size_t(i)];
                isAllowed &= !canHold || c[std::size_t(i)] >= -1e-12;
            }
            if (isAllowed && (!hasSum || std::abs(sum - 1.0) < 1e-9)) {
                least = std::min(least, objective(a, b, c));
            }
        }
        return least;
    }

  private slots:
    void asAllChoicesTried_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("leading");
        QTest::newRow("not negative") << static_cast<int>(Constraints::Nonnegative) << 0;
        QTest::newRow("not negative beside two free")
            << static_cast<int>(Constraints::Nonnegative) << 2;
        QTest::newRow("sum of 1") << static_cast<int>(Constraints::Sum1) << 0;
        QTest::newRow("both") << static_cast<int>(Constraints::Both) << 0;
    }
    void asAllChoicesTried() {
        QFETCH(int, kind);
        QFETCH(int, leading);
        const auto constraints = static_cast<Constraints>(kind);
        const bool hasSum = constraints == Constraints::Sum1 || constraints == Constraints::Both;
        const bool canHold = constraints != Constraints::Sum1;
        std::mt19937 random(static_cast<unsigned>(kind + 1));
        std::normal_distribution<double> normal;
        int holding = 0;
        for (int problem = 0; problem < 400; ++problem) {
            const int m = 1 + problem % 8;
            const int n = leading + m;
            // Like spectra: much in common; a fifth has two references that are the same, where
            // one of them can be held.
            Numbers a(static_cast<std::size_t>(n * n)), b(static_cast<std::size_t>(n));
            for (int k = 0; k < 60; ++k) {
                const double common = k < 20 ? 0.0 : 1.0;
                Numbers f;
                for (int i = 0; i < n; ++i) {
                    f.push_back(i == 0 && leading > 0   ? 1.0
                                : i == 1 && leading > 0 ? k - 30.0
                                                        : common + 0.2 * normal(random));
                }
                if (problem % 5 == 0 && m > 1 && canHold) {
                    f[std::size_t(n - 1)] = f[std::size_t(leading)];
                }
                const double y = 0.9 * common + 0.3 * normal(random);
                for (int i = 0; i < n; ++i) {
                    for (int j = 0; j < n; ++j) {
                        a[std::size_t(i * n + j)] += f[std::size_t(i)] * f[std::size_t(j)];
                    }
                    b[std::size_t(i)] += f[std::size_t(i)] * y;
                }
            }
            ConstrainedSolver solver(constraints, leading);
            solver.reset(a.data(), n, 60);
            Numbers c = b;
            const unsigned held = solver.solve(c.data());
            holding += held != 0;
            const double least = leastOfAll(a, b, leading, hasSum, canHold);
            const double scale = 1.0 + std::abs(least);
            QVERIFY(std::abs(objective(a, b, c) - least) < 1e-9 * scale);
            double sum = 0.0;
            for (int i = leading; i < n; ++i) {
                const bool isHeld = ((held >> (i - leading)) & 1U) != 0;
                QVERIFY(!isHeld || c[std::size_t(i)] == 0.0);
                QVERIFY(!canHold || c[std::size_t(i)] >= 0.0);
                sum += c[std::size_t(i)];
            }
            QVERIFY(!hasSum || std::abs(sum - 1.0) < 1e-9);
            Numbers again = b;
            QCOMPARE(solver.solve(again.data()), held);
            QCOMPARE(again, c);
        }
        QCOMPARE(holding > 100, canHold);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestConstraints)
#include "tst_constraints.moc"
