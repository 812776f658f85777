#include <QApplication>
#include <QFileDialog>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "Controls.h"
#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "panels/BatchCtrl.h"

class TestBatchCtrl : public QObject {
    Q_OBJECT

    BatchCtrl* m_window = nullptr;

    QPlainTextEdit* cmds() const { return control<QPlainTextEdit>("BatchCmds", m_window); }
    QPlainTextEdit* logs() const { return control<QPlainTextEdit>("BatchLogs", m_window); }
    void click(const char* name) { press(name, m_window); }

  private slots:
    void init() {
        m_window = new BatchCtrl;
        m_window->show();
    }

    void cleanup() {
        delete m_window;
        m_window = nullptr;
    }

    void execHandsOverEveryLine() {
        QSignalSpy spy(m_window, &BatchCtrl::doDispatchCmds);
        click("Exec");
        QCOMPARE(spy.takeFirst().at(0).toStringList(), QStringList{""});
        cmds()->setPlainText("a\n\nb\n");
        click("Exec");
        QCOMPARE(spy.takeFirst().at(0).toStringList(), (QStringList{"a", "", "b", ""}));
        m_window->execBatch();
        QCOMPARE(spy.takeFirst().at(0).toStringList(), (QStringList{"a", "", "b", ""}));
        QCOMPARE(m_window->editorLines(Qt::SkipEmptyParts), (QStringList{"a", "b"}));
        m_window->dispatchLines({"a", "b"});
        QCOMPARE(spy.takeFirst().at(0).toStringList(), (QStringList{"a", "b"}));
        QCOMPARE(cmds()->toPlainText(), QString("a\n\nb\n"));
    }

    void buttons() {
        QSignalSpy stop(m_window, &BatchCtrl::batchStop);
        click("Stop");
        QCOMPARE(stop.count(), 1);
        cmds()->setPlainText("a");
        m_window->logmsg("b");
        click("Clear");
        QCOMPARE(cmds()->toPlainText(), QString());
        QCOMPARE(logs()->toPlainText(), QString("b"));
        cmds()->undo();
        QCOMPARE(cmds()->toPlainText(), QString("a"));
        click("ClearLog");
        QCOMPARE(logs()->toPlainText(), QString());
        QCOMPARE(m_window->windowTitle(), QString("Batch Ctrl."));
    }

    void logScrollsAlongWithoutLineFeeds() {
        QVERIFY(logs()->isReadOnly());
        QVERIFY(!logs()->isUndoRedoEnabled());
        QSignalSpy logged(m_window, &BatchCtrl::logged);
        m_window->logmsg("echo a");
        CmdLine cmd;
        cmd.text = "# %1 note ";
        m_window->showCmdErr(cmd);
        m_window->logmsg("set_band_w : 1\n");
        QCOMPARE(logs()->toPlainText(), QString("echo aErr: # %1 note set_band_w : 1\n"));
        QVERIFY(logs()->textCursor().atEnd());
        QCOMPARE(logged.count(), 3);
        // A click moves the place of the next text only.
        logs()->moveCursor(QTextCursor::Start);
        m_window->logmsg("x\n");
        m_window->logmsg("y\n");
        QCOMPARE(logs()->toPlainText(), QString("x\necho aErr: # %1 note set_band_w : 1\ny\n"));
    }

    void loadAndSave() {
        QTemporaryDir dir;
        // With a no-break space, which belongs to the name.
        const QString japanese = QString::fromUtf8("save_image \xE9\x89\x84\xC2\xA0.png");
        cmds()->setPlainText("a\n" + japanese);
        m_window->save(dir.filePath("a.bat"));
        QCOMPARE(contentOf(dir.filePath("a.bat")), ("a\n" + japanese).toUtf8());
        cmds()->setPlainText("other");
        m_window->setBatchFile(dir.filePath("a.bat"));
        QCOMPARE(textOf("Message", m_window), QString("Loaded a.bat"));
        m_window->load(dir.filePath("missing.bat"));
        QVERIFY(textOf("Message", m_window).startsWith("cannot be read: "));
        QCOMPARE(m_window->editorLines(), (QStringList{"a", japanese, ""}));
        m_window->save(dir.filePath("no/such/dir.bat"));
        QVERIFY(textOf("Message", m_window).startsWith("cannot be written: "));
        {
            const FullDisk full(16);
            cmds()->setPlainText(QString(100000, 'x'));
            m_window->save(dir.filePath("a.bat"));
        }
        QVERIFY(textOf("Message", m_window).contains("a.bat"));
        m_window->load(dir.filePath("a.bat"));
        QCOMPARE(m_window->editorLines(), (QStringList{"a", japanese, ""}));
    }

    void dialogs() {
        QTemporaryDir dir;
        const QString name = dir.filePath("x.bat");
        cmds()->setPlainText("text");
        for (const char* button : {"Save", "Load"}) {
            click(button);
            const QFileDialog* dialog = nullptr;
            for (const QFileDialog* one : m_window->findChildren<QFileDialog*>()) {
                dialog = one->isVisible() ? one : dialog;
            }
            QVERIFY(dialog != nullptr && !dialog->isModal());
            QCOMPARE(dialog->acceptMode() == QFileDialog::AcceptSave, button == QByteArray("Save"));
            QCOMPARE(dialog->nameFilters(),
                     (QStringList{"Batch File (*.bat)", "Any Files (* *.*)"}));
            answer({name});
            QCOMPARE(contentOf(name), QByteArray("text"));
            cmds()->setPlainText(button == QByteArray("Save") ? "changed" : cmds()->toPlainText());
        }
        QCOMPARE(cmds()->toPlainText(), QString("text\n"));
    }
};

TARNWICK_TEST_MAIN(QApplication, TestBatchCtrl)
#include "tst_batchctrl.moc"
