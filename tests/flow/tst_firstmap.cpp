#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>
#include <QWheelEvent>
#include <memory>

#include "BatchRun.h"
#include "Controls.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "base/Globals.h"
#include "display/FolderMemory.h"
#include "frames/TiffData.h"
#include "measurement/FolderLoad.h"
#include "window/Body.h"
#include "window/Layout.h"
#include "window/Remembered.h"

namespace {

const QSize SmallScreen(1366, 728);  // less the title bar
constexpr int Bin = 21;              // pixels a side, as the program starts

/// The same in all of a bin.
double fractionOfA(int x, int y) {
    return 0.2 + 0.3 * (x / Bin) + 0.15 * (y / Bin);
}

}  // namespace

/// A measurement is opened by its folder, with mouse and keyboard alone.
class TestFirstMap : public QObject {
    Q_OBJECT

    QTemporaryDir m_settings;
    QTemporaryDir m_dir;
    std::unique_ptr<Body> m_body;
    const QString m_start = DataDir;
    int m_clicks = 0;

    QString run() const { return m_dir.filePath("run12"); }
    Measurement& measurement() { return m_body->measurement(); }
    bool isIdle() {
        return !measurement().isAtWork(Work::LoadFolder) && measurement().working() == Work::None;
    }

    /// A click of the mouse at a place of the screen, on what is seen there.
    void clickAt(QWidget* widget, const QPoint& at) {
        QWidget* window = widget->window();
        const QWidget* modal = QApplication::activeModalWidget();
        const QString name = widget->objectName();
        QVERIFY2(modal == nullptr || modal == window, qPrintable(name + " is behind a dialog"));
        const QPoint inWindow = widget->mapTo(window, at);
        const QWidget* seen = window->childAt(inWindow);
        QVERIFY2(seen == widget || widget->isAncestorOf(seen), qPrintable(name + " is not seen"));
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow);
        ++m_clicks;
    }

    void click(const QString& name) {
        auto* widget = control<QWidget>(name);
        QTRY_VERIFY2(widget->isVisible() && widget->isEnabled(), qPrintable(name));
        clickAt(widget, widget->rect().center());
    }

    /// In the dialog, which stands in the folder that holds the measurement.
    void clickFolder() {
        auto* dialog = control<QFileDialog>("OpenFolderDialog");
        auto* list = dialog->findChild<QAbstractItemView*>(
            dialog->viewMode() == QFileDialog::Detail ? "treeView" : "listView");
        QTRY_COMPARE(list->model()->rowCount(list->rootIndex()), 1);
        const QModelIndex folder = list->model()->index(0, 0, list->rootIndex());
        QTRY_VERIFY(!list->visualRect(folder).isEmpty());
        clickAt(list->viewport(), list->visualRect(folder).center());
        auto* buttons = dialog->findChild<QDialogButtonBox*>("buttonBox");
        QWidget* choose = buttons->button(QDialogButtonBox::Open);
        clickAt(choose, choose->rect().center());
        QTRY_VERIFY(m_body->findChild<QDialog*>("FolderDialog") != nullptr);
    }

    /// What is below in a dock comes up by the wheel, as the eye asks for it.
    void turnWheelTo(const QString& name) {
        auto* widget = control<QWidget>(name);
        QScrollArea* area = nullptr;
        for (QWidget* up = widget; area == nullptr; up = up->parentWidget()) {
            area = qobject_cast<QScrollArea*>(up);
        }
        QWidget* view = area->viewport();
        const QPoint at(2,
                        view->height() / 2);  // beside the fields, which have wheels of their own
        for (int i = 0; i < 30 && widget->visibleRegion().boundingRect() != widget->rect(); ++i) {
            QWheelEvent turned(at, view->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                               Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view, &turned);
        }
    }

    static QString dialogText(const char* name) {
        return control<QComboBox>(name, control<QDialog>("FolderDialog"))->currentText();
    }

    void drop(QWidget* target, const QStringList& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& file : files) {
            urls << QUrl::fromLocalFile(file);
        }
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &dropped);
    }

  private slots:
    void initTestCase() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
        Phantom::Options options;
        options.width = 3 * Bin;
        options.height = 2 * Bin;
        options.fractionOfA = fractionOfA;
        const Phantom phantom(options);
        DataDir = m_dir.path();
        const QDir dir(phantom.dir());
        for (const char* part : {"i1", "i0", "references"}) {
            QVERIFY(QDir().mkpath(run() + '/' + part));
            const QString pattern = QString(part) == "references" ? "*.dat" : part + QString("*");
            for (const QString& name : dir.entryList({pattern}, QDir::Files)) {
                QVERIFY(QFile::copy(dir.filePath(name), run() + '/' + part + '/' + name));
            }
        }
    }

    void init() { m_clicks = 0; }
    void cleanup() { m_body.reset(); }
    void cleanupTestCase() { DataDir = m_start; }

    /// The guide's first map from a start with nothing remembered, and no window is moved.
    void twelveClicks_data() {
        columns<int>("points");
        QTest::newRow("10 points") << 10;
        QTest::newRow("12 points") << 12;
    }
    void twelveClicks() {
        QFETCH(int, points);
        Remembered::shared().keep();
        QApplication::setFont(QFont("Sans Serif", points));
        m_body = std::make_unique<Body>();
        m_body->layoutOfWindows()->restore();
        m_body->resize(SmallScreen);
        m_body->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_body.get()));
        QApplication::processEvents();
        click("OpenFolder");
        clickFolder();
        QCOMPARE(dialogText("FolderI1"), QString("i1: 61 files, 7000.0 to 7300.0 eV"));
        QCOMPARE(control<QListWidget>("FolderReferences")->count(), 2);
        click("FolderLoad");
        QTRY_VERIFY(isIdle());
        const QString said = textOf("Notice");
        QVERIFY2(said.contains("loaded 61 frames of I1, 7000.0 to 7300.0 eV") &&
                     said.contains("loaded 61 frames of I0") && said.contains("a.dat, b.dat"),
                 qPrintable(said));
        QVERIFY(textOf("State").startsWith("run12   I1 frame 61 of 61"));
        QCOMPARE(m_body->windowTitle(), QString("Tarnwick"));

        click("AskAnalyze");
        QTRY_VERIFY(isIdle());
        QVERIFY(control<QAbstractButton>("ShowResAnalysis")->isChecked());  // by itself
        turnWheelTo("SelRatio");
        click("SelRatio");
        QVERIFY2(m_clicks <= 12, qPrintable(QString::number(m_clicks)));

        const Result* shown = measurement().shownResult();
        QVERIFY(shown != nullptr && shown->image.hasData());
        for (int x = Bin / 2; x < 3 * Bin; x += Bin) {
            for (int y = Bin / 2; y < 2 * Bin; y += Bin) {
                const double found = shown->image.visibleValueAt(x, y);
                QVERIFY2(std::abs(found - fractionOfA(x, y)) < 1e-3,
                         qPrintable(QString("%1 %2: %3").arg(x).arg(y).arg(found)));
            }
        }
        const RecordLines record = measurement().recordOfResults(QString());
        QVERIFY(record.lines.join('\n').contains("load_I1_files NEW i1/i1-7000_000eV.tif"));
        QVERIFY(!record.lines.join('\n').contains("open_folder"));
    }

    /// Names and folders are kept from start to start, unless a batch is run at the start; all
    /// dialogs that read share a folder.
    void whatIsRemembered() {
        const QSettings store("Haldmoor Lab", "Tarnwick");
        QCOMPARE(store.value("recent folders").toStringList(), QStringList(run()));
        QCOMPARE(FolderMemory::shared().chosen(FolderMemory::Reading), run());
        QVERIFY(FolderMemory::shared().chosen(FolderMemory::Writing).isEmpty());
        m_body = std::make_unique<Body>();
        m_body->show();
        press("SelectDark");
        QCOMPARE(control<QFileDialog>("DarkDialog")->directory().path(), run());
        control<QFileDialog>("DarkDialog")->hide();

        const QString gone = m_dir.filePath("gone");
        Remembered::shared().note(Remembered::folders(), gone);
        auto* recent = control<QAction>("actionOpenRecent", m_body.get())->menu();
        QCOMPARE(recent->actions().size(), 2);
        recent->actions().first()->trigger();
        QTRY_COMPARE(recent->actions().size(), 1);
        QVERIFY(textOf("Notice").contains("no longer there"));
        recent->actions().first()->trigger();
        QTRY_VERIFY(m_body->findChild<QDialog*>("FolderDialog") != nullptr);
        QCOMPARE(dialogText("FolderI0"), QString("i0: 61 files, 7000.0 to 7300.0 eV"));
        auto* cancel = control<QWidget>("FolderCancel");
        QTest::keyClick(cancel, Qt::Key_Escape);
        QCOMPARE(measurement().stack(StackId::I1).size(), 0);
    }

    /// A line that waits for frames is answered, though a folder is opened before they are there.
    void aBatchGoesOn() {
        m_body = std::make_unique<Body>();
        const FolderFiles files =
            filesOf(contentsOf(measurement(), listingOf(measurement(), run())));
        QMetaObject::Connection once =
            connect(m_body.get(), &Body::loadProgress, this, [this, files, &once] {
                disconnect(once);
                QVERIFY(!openFolder(measurement(), files).failed());
            });
        BatchRun batch(*m_body);
        QVERIFY(batch.run({"load_I1_files_of_pattern NEW " + run() + "/i0 *.tif", "set_band_w 3"},
                          10000));
        QTRY_COMPARE(measurement().stack(StackId::I0).size(), 61);
        QTRY_VERIFY(isIdle());
        QVERIFY(measurement().stack(StackId::I1).files().first().path.contains("/i1/"));
    }

    /// On the row of a stack its frames, anywhere else what the names say; what holds none says so.
    void dropped() {
        m_body = std::make_unique<Body>();
        m_body->show();
        drop(control<QWidget>("SelectI0Files"), {run() + "/i1/i1-7010_000eV.tif", run() + "/i0"});
        QTRY_COMPARE(measurement().stack(StackId::I0).size(), 62);
        QTRY_VERIFY(textOf("Notice").contains("loaded 62 frames of I0"));

        const QString odd = m_dir.filePath("odd");
        QVERIFY(QDir().mkpath(odd));
        drop(m_body.get(), {odd});
        QVERIFY(textOf("Notice").contains("there is no frame in " + odd));
        put(odd + "/a-7000eV.tif", "II*");
        put(odd + "/b-7000eV.tif", "II*");
        drop(m_body.get(), {odd});
        const QString text = control<QPlainTextEdit>("FolderRemarks")->toPlainText();
        QVERIFY2(text.contains("no frames are named as I1, I0 or dark"), qPrintable(text));
        auto* load = control<QWidget>("FolderLoad");
        QVERIFY(!load->isEnabled());
        QTest::keyClick(control<QComboBox>("FolderI1"), Qt::Key_Down);
        QTest::keyClick(control<QComboBox>("FolderI0"), Qt::Key_Down);
        QVERIFY(!load->isEnabled());  // the same frames twice
        QTest::keyClick(control<QComboBox>("FolderI0"), Qt::Key_Up);
        QTest::keyClick(load, Qt::Key_Return);
        QTRY_VERIFY(textOf("Notice").contains("I1: not taken: a-7000eV.tif: a TIFF file"));
        QCOMPARE(measurement().stack(StackId::I0).size(), 62);

        drop(m_body.get(), {run() + "/i0/i0-7000_000eV.tif", run() + "/i1/i1-7000_000eV.tif",
                            run() + "/references/b.dat"});
        QTest::keyClick(control<QWidget>("FolderLoad"), Qt::Key_Return);
        QTRY_COMPARE(measurement().stack(StackId::I0).size(), 1);
        QTRY_COMPARE(measurement().stack(StackId::I1).size(), 1);
        QVERIFY(measurement().references().front()->takesPart());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestFirstMap)
#include "tst_firstmap.moc"
