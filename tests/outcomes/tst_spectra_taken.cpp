#include "OutcomeCase.h"

/// What is taken for a reference or a standard.
class TestSpectraTaken : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

    /// s.dat: the points of a.dat within a range, written in another way.
    static Make points(double from, double to,
                       const std::function<QByteArray(double e, double mu)>& line,
                       const QByteArray& head = QByteArray()) {
        return [=] {
            QByteArray text = head;
            for (double e = from; e <= to; e += 2.0) {
                text += line(e, Phantom::muA(e)) + '\n';
            }
            put("s.dat", text);
        };
    }

  private slots:
    void taken_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const auto comma = [](double e, double mu) {
            return QByteArray::number(e) + ", " + QByteArray::number(mu);
        };
        const auto keV = [](double e, double mu) {
            return QByteArray::number(e / 1000.0, 'g', 9) + ' ' + QByteArray::number(mu);
        };
        const QString reference("analyzer_set_LCF_std 0 1 0 s.dat 0");
        const QString standard("calib_load_std s.dat");
        const Make whole = points(7000, 7300, comma, "energy, mu\n");
        const Make wrong = points(7000, 7300, keV);
        add("a reference with commas and a heading", whole, reference, "done", "");
        add("a standard like it", whole, standard, "done", "");
        add("rows left out", points(7000, 7300, comma, "7000, 1\nbad\n7001, nan\n"), reference,
            "warning", "2 row.*: s\\.dat");
        add("a reference in keV", wrong, reference, "failed", "not taken, .* keV.*: s\\.dat");
        add("a standard in keV", wrong, standard, "failed", "not taken, .* keV.*: s\\.dat");
        add("a frame", {}, "calib_load_std i1-7100_000eV.tif", "failed", "not a text");
        add("no file", {}, reference, "failed", "cannot be read: s\\.dat");
        add("no edge", points(7000, 7080, comma), standard, "warning", "no edge: s\\.dat");
        add("no rising edge", points(7000, 7080, comma), "LOAD\n" + standard + "\ncalib_exec",
            "warning", "no rising edge");
        add("no pre-edge", points(7098, 7300, comma), reference, "warning",
            "pre-edge line on [12] ");
        add("no post-edge", points(7000, 7122, comma), reference, "warning", "post-edge line on 2");
        // What is not taken leaves nothing of what was there before.
        add("nothing to save", wrong, "calib_load_std a.dat\n" + standard + "\nsave_spectra o.dat",
            "failed", "no spectrum");
        add("nothing to fit with", wrong,
            "LOAD\nREFS\n" + reference + "\n" + QString(reference).replace(" 0 1", " 1 1") +
                "\nanalyzer_exec_LCF",
            "failed", "no reference is in use");
    }
    void taken() { m_cases.judge(); }
};

TARNWICK_TEST_MAIN(QApplication, TestSpectraTaken)
#include "tst_spectra_taken.moc"
