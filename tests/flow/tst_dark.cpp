#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QPushButton>
#include <memory>
#include <vector>

#include "BatchRun.h"
#include "Controls.h"
#include "Phantom.h"
#include "TestMain.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"

namespace {

constexpr int Width = 12;
constexpr int Height = 8;

int darkCount(int x, int y) {
    return 1500 + 90 * x + 17 * y;
}

}  // namespace

/// Dark frames from the button to the map.
class TestDark : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.i0Energies = 21;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        m_plain = std::make_unique<Phantom>(options);
        options.dark = darkCount;
        m_darkened = std::make_unique<Phantom>(options);
        m_darkFiles = m_darkened->writeDarkFrames(Width, Height, darkCount);
        QCOMPARE(m_darkFiles.size(), 3);
    }

    void init() {
        m_body = std::make_unique<Body>();
        m_body->show();
    }
    void cleanup() { m_body.reset(); }

    /// The dark counts are whole numbers: without them the counts are those of the plain
    /// measurement, and so is every fraction, to the last bit.
    void fractionsComeBackAsWithoutDarkCounts() {
        const auto plain = mapOf(m_plain->loadAndSetReferences());
        const auto biased = mapOf(m_darkened->loadAndSetReferences());
        QVERIFY(plain != biased);
        QVERIFY(!state().contains(" dark "));

        QSignalSpy released(m_body.get(), &Body::finishBatchExec);
        choose(m_darkFiles);
        QTRY_VERIFY(state().contains("3 dark frame"));
        QCOMPARE(released.count(), 0);
        QVERIFY(button()->toolTip().contains("3 dark frame"));
        QVERIFY(mapOf({}) == plain);

        // Images that come anew are corrected as well, those of the plain counts wrongly.
        const auto twice = mapOf(m_plain->loadAndSetReferences());
        QVERIFY(twice != plain);
        QVERIFY(mapOf(m_darkened->loadAndSetReferences()) == plain);

        m_body->findChild<QAction*>("ClearDark")->trigger();
        QVERIFY(!state().contains(" dark "));
        QVERIFY(!button()->toolTip().contains("3 dark frame"));
        QVERIFY(mapOf({}) == biased);
    }

    /// Clearing while a map is being made is for the next one, even when the mouse asks for a
    /// spectrum in between.
    void aMapIsMadeWithOneDarkFrame() {
        const auto biased = mapOf(m_darkened->loadAndSetReferences());
        choose(m_darkFiles);
        QTRY_VERIFY(state().contains("3 dark frame"));
        const auto plain = mapOf({});
        bool wasBusy = false;
        connect(m_body.get(), &Body::analysisProgress, this, [&](double percent) {
            if (!wasBusy && percent > 0.0 && percent < 100.0) {
                wasBusy = m_body->measurement().working() == Work::Fit;
                m_body->findChild<QAction*>("ClearDark")->trigger();
                m_body->showXafsSpectrum(2.5, 2.5);
            }
        });
        m_body->startLCF2DAnalysis();
        QTRY_VERIFY(!analyzerWindow()->isBusy());
        QVERIFY(wasBusy);
        QVERIFY(fractions() == plain);
        QVERIFY(mapOf({}) == biased);
    }

    void theButtonOpensItsDialogOnce() {
        button()->click();
        button()->click();
        const auto dialogs = m_body->findChildren<QFileDialog*>("DarkDialog");
        QVERIFY(dialogs.size() == 1 && !dialogs[0]->isModal());
        QCOMPARE(dialogs[0]->fileMode(), QFileDialog::ExistingFiles);
        QVERIFY(dialogs[0]->nameFilters().first().contains("*.tif"));
        QVERIFY(button()->actions().contains(m_body->findChild<QAction*>("ClearDark")));
    }

    void framesOfAnotherSizeChangeNothing() {
        const auto biased = mapOf(m_darkened->loadAndSetReferences());
        choose(m_darkened->writeDarkFrames(Width + 1, Height, darkCount));
        QTRY_VERIFY(state().contains("3 dark file(s) unreadable"));
        QVERIFY(mapOf({}) == biased);
    }

    /// Without images there is no size that dark frames could miss; those of before are forgotten.
    void clearedImagesLeaveRoomForAnotherSize() {
        Phantom::Options options;
        options.width = Width + 1;
        options.i0Energies = 21;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        const Phantom plain(options);
        options.dark = darkCount;
        const Phantom wide(options);
        const auto expected = mapOf(plain.loadAndSetReferences());
        QVERIFY(!expected.empty());
        QVERIFY(!mapOf(m_darkened->loadAndSetReferences()).empty());
        press("Clear", control<QWidget>("SelectI1Files"));
        choose(wide.writeDarkFrames(Width + 1, Height, darkCount));
        QTRY_VERIFY(state().contains("3 dark frame"));
        QVERIFY(mapOf(wide.loadAndSetReferences()) == expected);
    }

    void theWindowClosesWhileDarkFramesAreRead() { choose(m_darkFiles); }

  private:
    QPushButton* button() { return m_body->findChild<QPushButton*>("SelectDark"); }
    QString state() { return textOf("State"); }
    void choose(const QStringList& files) {
        button()->click();
        answer(files);
    }
    static std::vector<double> fractions() {
        std::vector<double> values;
        Analyzed2DRes* ratio = analyzerWindow()->references().at(0)->result(LCFReference::Ratio);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {
                values.push_back(ratio->valueAt(x, y));
            }
        }
        return values;
    }

    /// The first fraction of every pixel after these lines and a fit.
    std::vector<double> mapOf(QStringList lines) {
        BatchRun batch(*m_body);
        lines << "analyzer_exec_LCF";
        return batch.succeeds(lines) ? fractions() : std::vector<double>();
    }

    std::unique_ptr<Phantom> m_plain;
    std::unique_ptr<Phantom> m_darkened;
    QStringList m_darkFiles;
    std::unique_ptr<Body> m_body;
};

TARNWICK_TEST_MAIN(QApplication, TestDark)
#include "tst_dark.moc"
