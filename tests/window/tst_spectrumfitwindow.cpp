#include <QAction>
#include <QPushButton>
#include <QTableWidget>

#include "BatchRun.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "display/DispA.h"
#include "window/SpectrumFitWindow.h"

/// The window that fits a spectrum file, as a user works with it.
class TestSpectrumFitWindow : public QObject {
    Q_OBJECT

    static QString cell(int row, int column) {
        const QTableWidgetItem* item =
            control<QTableWidget>("Shares", topLevel<SpectrumFitWindow>())->item(row, column);
        return item != nullptr ? item->text() : QString();
    }

  private slots:
    void fromMenuToFiles() {
        Phantom::Options options;
        options.fractionOfA = [](int, int) { return 0.5; };
        const Phantom phantom(options);
        const QTemporaryDir dir;
        Body body;
        body.show();
        auto* window = topLevel<SpectrumFitWindow>();
        auto* menu = body.findChild<QAction*>("actionFitSpectrumFile");
        QVERIFY(menu != nullptr);
        const auto take = [&](const QString& name) {
            menu->trigger();
            answer({phantom.file(name)});
        };
        take("a.dat");
        QVERIFY(window->isVisible());
        QCOMPARE(textOf("FitMessage", window), QString("no reference is in use"));
        QVERIFY(!control<QPushButton>("SaveFitTable", window)->isEnabled());

        // It follows the references while it is open.
        BatchRun batch(body);
        QVERIFY(batch.succeeds({"analyzer_set_LCF_std 0 1 0 " + phantom.file("a.dat") + " 0",
                                "analyzer_set_LCF_std 1 1 0 " + phantom.file("b.dat") + " 0"}));
        QTRY_COMPARE(cell(1, 1), QString("0.0000"));
        QCOMPARE(cell(0, 0), QString("a.dat"));
        QCOMPARE(cell(0, 1), QString("1.0000"));
        QVERIFY(textOf("FitNumbers", window).startsWith("Sum 1.0000, R "));
        QCOMPARE(textOf("FitMessage", window), QString());
        auto* canvas = control<DispA>("FitPlot", window);
        const QImage before = canvas->grab().toImage();
        take("b.dat");
        QCOMPARE(cell(1, 1), QString("1.0000"));
        QVERIFY(canvas->grab().toImage() != before);

        for (const char* button : {"SaveFitTable", "SaveFitPlot"}) {
            QTest::mouseClick(control<QPushButton>(button, window), Qt::LeftButton);
            answer({dir.filePath(button)});
        }
        QVERIFY(contentOf(dir.filePath("SaveFitTable.dat")).contains("# reference 1 share = 1\n"));
        QVERIFY(contentOf(dir.filePath("SaveFitPlot.pdf")).startsWith("%PDF"));
        QTest::mouseClick(control<QPushButton>("SaveFitTable", window), Qt::LeftButton);
        answer({phantom.file("b.dat")});
        QVERIFY(textOf("FitMessage", window).contains("was read from this file"));

        QApplication::setActiveWindow(window);
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!window->isVisible());
        take("none.dat");
        QVERIFY(window->isVisible());
        QVERIFY(textOf("FitMessage", window).contains("cannot be read"));
        QCOMPARE(cell(0, 1), QString());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSpectrumFitWindow)
#include "tst_spectrumfitwindow.moc"
