#include "OutcomeCase.h"

/// What stands in the way of an output.
class TestOutputs : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    void outputs_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        add("a frame", {}, "LOAD\nmove_position 3 3\nsave_spectra i1-7100_000eV.tif", "failed",
            "was read from this file");
        add(
            "a link to a reference", [] { QFile::link("a.dat", "link.dat"); },
            "LOAD\nREFS\nmove_position 3 3\nsave_spectra link.dat", "failed",
            "was read from this file: link.dat");
        add("another name", {}, "LOAD\nmove_position 3 3\nsave_spectra c.dat", "done", "");
        add("no folder", {}, "LOAD\nmove_position 3 3\nsave_spectra d/c.dat", "failed",
            "cannot be written: d/c.dat");
    }
    void outputs() { m_cases.judge(); }
};

TARNWICK_TEST_MAIN(QApplication, TestOutputs)
#include "tst_outputs.moc"
