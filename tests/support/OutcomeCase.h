#pragma once

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <functional>

#include "BatchRun.h"
#include "DebugLines.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"

using Make = std::function<void()>;
Q_DECLARE_METATYPE(Make)

/// Tables of cases that are judged by how their last line ends: a few files made in place, a batch,
/// the outcome and its text, in both programs.
///
/// Every case has a folder of its own, which is the current one, with the stacks i1-*.tif and
/// i0-*.tif of 12 x 8 pixels (31 energies from 7000 to 7300 eV, the edge at 7110) and the
/// references a.dat and b.dat. In a batch LOAD stands for the lines that load both stacks, REFS for
/// those that take both references, with single pixels.
class OutcomeCases {
  public:
    OutcomeCases() {
        Phantom::Options options;
        options.energies = 31;
        options.i0Energies = 31;
        options.fractionOfA = [](int x, int y) { return 0.1 + 0.05 * x + 0.02 * y; };
        m_phantom = std::make_unique<Phantom>(options);
    }

    static void declare() {
        columns<Make, QString, QString, QString>("make", "batch", "verdict", "text");
    }
    static void add(const char* name, const Make& make, const QString& batch,
                    const QString& verdict, const QString& text = QString()) {
        QTest::newRow(name) << make << batch << verdict << text;
    }

    /// Judges the present row; verdict is "done", "warning" or "failed", text a regular expression
    /// for one of the last line's messages.
    void judge() {
        QFETCH(Make, make);
        QFETCH(QString, batch);
        QFETCH(QString, verdict);
        QFETCH(QString, text);
        const DebugLines unseen;
        QStringList lines = batch.split('\n');
        expand(&lines, "LOAD",
               {"load_I1_files_of_pattern NEW . i1-*.tif",
                "load_I0_files_of_pattern NEW . i0-*.tif", "set_band_w 0", "set_band_h 0"});
        expand(&lines, "REFS",
               {"analyzer_set_LCF_std 0 1 0 a.dat 0", "analyzer_set_LCF_std 1 1 0 b.dat 0"});
        QStringList batchTexts;
        QStringList windowTexts;
        inFolder(make, [&] { batchTexts = runProgram(lines); });
        inFolder(make, [&] { windowTexts = runWindow(lines); });
        const QString said = batchTexts.join('\n');
        QCOMPARE(windowTexts.join('\n'), said);
        QVERIFY2(verdictOf(batchTexts) == verdict, qPrintable(said));
        QVERIFY2(said.contains(QRegularExpression(text)), qPrintable(said));
    }

  private:
    static void expand(QStringList* lines, const QString& word, const QStringList& by) {
        const int at = lines->indexOf(word);
        if (at >= 0) {
            *lines = lines->mid(0, at) + by + lines->mid(at + 1);
        }
    }

    static QString verdictOf(const QStringList& texts) {
        if (texts.isEmpty()) {
            return QStringLiteral("done");
        }
        return texts.first().startsWith("failed: ") ? QStringLiteral("failed")
                                                    : QStringLiteral("warning");
    }

    void inFolder(const Make& make, const std::function<void()>& what) {
        const QTemporaryDir folder;
        const QDir source(m_phantom->dir());
        for (const QString& name : source.entryList(QDir::Files)) {
            QVERIFY(QFile::copy(source.filePath(name), folder.filePath(name)));
        }
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder.path()));
        if (make) {
            make();
        }
        what();
        QVERIFY(QDir::setCurrent(before));
    }

    /// What tarnwick-batch says of the last line.
    static QStringList runProgram(const QStringList& lines) {
        put("judged.bat", lines.join('\n').toUtf8());
        QProcess process;
        process.start(TARNWICK_BATCH, {"judged.bat"});
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
            qWarning("tarnwick-batch did not come to its end");
        }
        QStringList texts;
        const QString head = QString("line %1: ").arg(lines.size());
        for (const QString& line : QString::fromUtf8(process.readAllStandardError()).split('\n')) {
            if (line.startsWith(head)) {
                const QString text = line.section(": ", 2);
                texts << (text.startsWith("warning: ") ? text : "failed: " + text);
            }
        }
        return texts;
    }

    /// What the Progress Log of the window says of it.
    static QStringList runWindow(const QStringList& lines) {
        Body body;
        QString log;
        QObject::connect(body.batchCtrl(), &BatchCtrl::logged,
                         [&log](const QString& text) { log += text; });
        QObject::connect(body.dispatcher(), &BatchDispatcher::log, body.batchCtrl(),
                         [&log] { log.clear(); });
        if (!BatchRun(body).run(lines)) {
            qWarning("the window did not come to the end of the batch");
        }
        QStringList texts;
        for (const QString& line : log.split('\n')) {
            if (line.startsWith("failed: ") || line.startsWith("warning: ")) {
                texts << line;
            }
        }
        return texts;
    }

    std::unique_ptr<Phantom> m_phantom;
};
