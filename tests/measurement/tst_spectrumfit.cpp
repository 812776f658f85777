#include <QFileInfo>
#include <QTemporaryDir>
#include <array>
#include <cmath>

#include "Files.h"
#include "TestMain.h"
#include "measurement/SpectrumFit.h"

namespace {

// Flat before and after an edge at 7100 eV with four points, so that the shares can be worked out
// by hand: of what the two references have there and of three points of 1.
constexpr int Count = 10;
constexpr int PrePoints = 3;
constexpr int PostPoints = 3;
using Values = std::array<double, Count>;
constexpr Values Energies{7020, 7050, 7080, 7094, 7098, 7102, 7106, 7120, 7150, 7180};
constexpr Values A{0, 0, 0, 0.0, 0.25, 0.75, 1.0, 1, 1, 1};
constexpr Values B{0, 0, 0, 0.25, 0.25, 0.75, 0.75, 1, 1, 1};
constexpr double AA = 4.625;
constexpr double AB = 4.375;
constexpr double BB = 4.25;
constexpr double Det = AA * BB - AB * AB;

constexpr double Jump = 2.0;

Values mixed(double a, double b, double more = 0.0) {
    Values y{};
    for (std::size_t k = 0; k < Count; ++k) {
        y[k] = a * A[k] + b * B[k];
    }
    y[4] += more;
    return y;
}

void putSpectrum(const QString& name, const Values& values, double jump) {
    int k = 0;
    putCurve(name, Energies, [&](double) { return jump * values[static_cast<std::size_t>(k++)]; });
}

/// A^-1 sum_l w_l phi_l for the points [first, end), times phi: what a line through them makes of
/// the weights, at each of them.
struct Line {
    int first;
    int end;
    double mean = 0.0;

    std::array<double, 2> solve(const std::array<double, 2>& right) const {
        double one = 0.0;
        double e = 0.0;
        double ee = 0.0;
        for (int k = first; k < end; ++k) {
            const double x = Energies[static_cast<std::size_t>(k)] - mean;
            one += 1.0;
            e += x;
            ee += x * x;
        }
        const double det = one * ee - e * e;
        return {(ee * right[0] - e * right[1]) / det, (one * right[1] - e * right[0]) / det};
    }
    double at(const std::array<double, 2>& right, int k) const {
        const std::array<double, 2> a = solve(right);
        return k >= first && k < end ? a[0] + a[1] * (Energies[static_cast<std::size_t>(k)] - mean)
                                     : 0.0;
    }
};

constexpr double Mean = 7100.0;
const Line Pre{0, PrePoints, Mean};
const Line Post{Count - PostPoints, Count, Mean};

/// d share / d mu-t(k), with lines that move along.
double shareBy(int k, const Values& y, double gA, double gB) {
    std::array<double, 2> pre{};
    std::array<double, 2> post{};
    const auto u = [&](std::size_t l) { return (gA * A[l] + gB * B[l]) / Jump; };
    for (std::size_t l = 0; l < Count; ++l) {
        const double x = Energies[l] - Mean;
        pre[0] += u(l) * (1.0 - y[l]);
        pre[1] += u(l) * (1.0 - y[l]) * x;
        post[0] += u(l) * y[l];
        post[1] += u(l) * y[l] * x;
    }
    return u(static_cast<std::size_t>(k)) - Pre.at(pre, k) - Post.at(post, k);
}

double jumpBy(int k, double midE) {
    const std::array<double, 2> phi{1.0, midE - Mean};
    return Post.at(phi, k) - Pre.at(phi, k);
}

}  // namespace

class TestSpectrumFit : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString file(const QString& name) const { return m_dir.filePath(name); }

    void takeReferences(Measurement* m) const {
        for (const char* name : {"a.dat", "b.dat"}) {
            QVERIFY(!m->addReference().failed());
            m->change(m->referenceCount() - 1, [&](Reference& reference) {
                QCOMPARE(reference.read(file(name)).texts(), QStringList());
                reference.setUse(true);
            });
        }
    }

  private slots:
    void initTestCase() {
        putSpectrum(file("a.dat"), A, 1.0);
        putSpectrum(file("b.dat"), B, 1.0);
    }

    /// A point of 1/8 too much: all by hand.
    void errorsOfTheResidual() {
        const Values y = mixed(0.25, 0.75, 0.125);
        putSpectrum(file("s.dat"), y, Jump);
        Measurement m;
        takeReferences(&m);
        const SpectrumFit fit = fitSpectrum(m, file("s.dat"));
        QCOMPARE(fit.outcome.texts(), QStringList());
        QCOMPARE(fit.e0, 7098.0 + 4.0 / 3.0);
        QCOMPARE(fit.midE, fit.e0);
        QCOMPARE(fit.edgeJump, Jump);
        QCOMPARE(int(fit.energies.size()), Count);
        QCOMPARE(fit.freedom, Count - 2);
        const double c[] = {0.25 - 1.0 / 132.0, 0.75 + 1.0 / 66.0};
        const double rest = 0.125 * 0.125 - 0.125 * 0.25 / 132.0;
        double yy = 0.0;
        for (const double value : y) {
            yy += value * value;
        }
        const double sigma = Jump * std::sqrt(rest / (Count - 2));
        QVERIFY(std::abs(fit.r - rest / yy) < 1e-14);
        QVERIFY(std::abs(fit.sigma - sigma) < 1e-13);
        QVERIFY(std::abs(fit.sum - c[0] - c[1]) < 1e-13);

        const double g[2][2] = {{BB / Det, -AB / Det}, {-AB / Det, AA / Det}};
        for (std::size_t i = 0; i < 2; ++i) {
            double share = 0.0;
            double jump = 0.0;
            for (int k = 0; k < Count; ++k) {
                const double by = shareBy(k, y, g[i][0], g[i][1]);
                const double jumpHas = Jump * by + c[i] * jumpBy(k, fit.midE);
                share += by * by;
                jump += jumpHas * jumpHas;
            }
            const SpectrumFit::Part& part = fit.parts[i];
            QVERIFY(std::abs(part.share - c[i]) < 1e-13);
            QVERIFY(std::abs(part.jump - Jump * c[i]) < 1e-13);
            QVERIFY(std::abs(part.shareError / (sigma * std::sqrt(share)) - 1.0) < 1e-10);
            QVERIFY(std::abs(part.jumpError / (sigma * std::sqrt(jump)) - 1.0) < 1e-10);
        }
    }

    /// That of the mean spectrum is the image's. With one in eV the ranges move along.
    void edge() {
        putSpectrum(file("s.dat"), mixed(0.25, 0.75), Jump);
        Measurement m;
        takeReferences(&m);
        m.set(&Settings::e0, EdgeChoice{EdgeChoice::Kind::Mean, 0.0});
        const SpectrumFit own = fitSpectrum(m, file("s.dat"));
        QCOMPARE(own.e0, 7100.0);
        QCOMPARE(own.outcome.notes.size(), 1);
        m.set(&Settings::e0, EdgeChoice{EdgeChoice::Kind::Energy, 7106.0});
        const SpectrumFit common = fitSpectrum(m, file("s.dat"));
        QCOMPARE(common.outcome.texts() + common.outcome.notes, QStringList());
        QCOMPARE(common.e0, 7106.0);
        QCOMPARE(common.midE, 7106.0);
        // The point at 7094 belongs to the pre-edge now.
        QVERIFY(common.parts[0].share > own.parts[0].share + 0.01);
    }

    void constraints_data() {
        using C = FitRule::Constraints;
        columns<int, double, double>("constraints", "a", "b");
        QTest::newRow("none") << int(C::None) << 1.25 << -0.25;
        QTest::newRow("nonnegative") << int(C::Nonnegative) << 1.25 - 0.25 * AB / AA << 0.0;
        QTest::newRow("sum") << int(C::Sum1) << 1.25 << -0.25;
        QTest::newRow("both") << int(C::Both) << 1.0 << 0.0;
    }
    void constraints() {
        QFETCH(int, constraints);
        QFETCH(double, a);
        QFETCH(double, b);
        putSpectrum(file("s.dat"), mixed(1.25, -0.25), Jump);
        Measurement m;
        takeReferences(&m);
        m.set(&Settings::constraints, static_cast<FitRule::Constraints>(constraints));
        const SpectrumFit fit = fitSpectrum(m, file("s.dat"));
        QCOMPARE(fit.outcome.failures, QStringList());
        QVERIFY(std::abs(fit.parts[0].share - a) < 1e-13);
        QVERIFY(std::abs(fit.parts[1].share - b) < 1e-13);
    }

    /// Constant and slope are the fit's own, and everything in the table adds up.
    void tableOfMlcf() {
        const QString old = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_dir.path()) && QDir().mkpath("refs"));
        const Values y = mixed(0.5, 1.5);
        std::size_t k = 0;
        putCurve("s.dat", Energies, [&](double e) { return y[k++] + 3.0 - 0.01 * (e - 7100.0); });
        Measurement m;
        takeReferences(&m);
        m.set(&Settings::method, LinearFit::Mlcf);
        QCOMPARE(fitSpectrumFile(m, "s.dat", "t.dat").failures, QStringList());
        QCOMPARE(fitSpectrumFile(m, file("s.dat"), file("refs/t.dat")).failures, QStringList());
        QCOMPARE(contentOf("refs/t.dat"), contentOf("t.dat"));
        const QByteArray text = contentOf("t.dat");
        QVERIFY(!text.contains(m_dir.path().toUtf8()));
        for (const char* line :
             {"# sample = s.dat\n", "# reference 1 = b.dat\n", "# degrees of freedom = 6\n",
              "# energy\tsample\tfit\tdifference\tline\treference_0\treference_1\n"}) {
            QVERIFY2(text.contains(line), line);
        }
        const QVector<QVector<double>> rows = numbersOf("t.dat", '\t');
        QCOMPARE(rows.size(), Count);
        for (int row = 0; row < Count; ++row) {
            const QVector<double>& v = rows.at(row);
            const auto at = static_cast<std::size_t>(row);
            const double expected[] = {Energies[at],
                                       y[at] + 3.0 - 0.01 * (Energies[at] - 7100.0),
                                       v[4] + v[5] + v[6],
                                       v[1] - v[2],
                                       v[4],
                                       0.5 * A[at],
                                       1.5 * B[at]};
            for (int i = 0; i < 7; ++i) {
                QVERIFY(std::abs(v[i] - expected[i]) < 1e-9);
            }
        }
        QVERIFY(QDir::setCurrent(old));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestSpectrumFit)
#include "tst_spectrumfit.moc"
