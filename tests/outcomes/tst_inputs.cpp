#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "OutcomeCase.h"

namespace {

/// A socket in the place of a file.
void makeSocket(const char* name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name, sizeof address.sun_path - 1);
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(made);
}

}  // namespace

/// Every input of a measurement, with everything in its place that is no file or does not end.
class TestInputs : public QObject {
    Q_OBJECT

    /// Each line reads x.
    static constexpr char Inputs[] =
        "load_I1_files NEW x\nload_I0_files NEW x\nload_dark_files x\ncalib_load_std x\n"
        "analyzer_set_LCF_std 0 1 0 x 0\nfit_spectrum x a.dat\ncalib_load_map x";

    OutcomeCases m_cases;

  private slots:
    void whatIsNoFile_data() {
        OutcomeCases::declare();
        const auto add = [](const char* what, const Make& make, const char* text = "not a file",
                            const char* name = "x") {
            OutcomeCases::add(what, make,
                              QString(Inputs).replace(QRegularExpression("\\bx\\b"), name),
                              "failed", text);
        };
        add("pipe", [] { QCOMPARE(mkfifo("x", 0600), 0); });
        add("device", [] { QVERIFY(QFile::link("/dev/zero", "x")); });
        add("terminal", [] { QVERIFY(QFile::link("/dev/tty", "x")); });
        add("socket", [] { makeSocket("x"); });
        add("folder", [] { QVERIFY(QDir().mkdir("x")); });
        add(
            "links in a circle", [] { QVERIFY(QFile::link("x", "x")); }, "");
        add(
            "of the system", [] { QVERIFY(QFile::link("/proc/self/status", "x")); }, "");
        add("a slash behind a name", {}, "", "a.dat/");
    }
    void whatIsNoFile() {
        QFETCH(Make, make);
        QFETCH(QString, batch);
        m_cases.inFolder(make, [&] {
            put("each.bat", batch.toUtf8());
            const OutcomeCases::Ends ends = OutcomeCases::ends("each.bat");
            QCOMPARE(ends.size(), batch.count('\n') + 1);
            QCOMPARE(ends.values().count("failed"), ends.size());
        });
        m_cases.judge();
    }

    void askedForItsOrigin() {
        m_cases.inFolder(
            [] { QCOMPARE(mkfifo("x", 0600), 0); },
            [] {
                for (const QStringList& asked : {QStringList{"--origin", "x"}, {"--record", "x"}}) {
                    QProcess process;
                    process.start(TARNWICK_BATCH, asked);
                    QVERIFY(process.waitForFinished());
                    QCOMPARE(process.exitCode(), 1);
                    QVERIFY(process.readAllStandardError().contains("not a file"));
                }
            });
    }
};

TARNWICK_TEST_MAIN(QApplication, TestInputs)
#include "tst_inputs.moc"
