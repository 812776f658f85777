#pragma once

#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
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

    /// How the lines of a batch end, by their numbers; those that do their work are left out.
    using Ends = QMap<int, QString>;

    /// As `--check` tells it.
    static Ends predictedEnds(const QString& batch) {
        return endsOf(output({"--check", batch}).out, "^[^:]*:(\\d+): (\\w+): (.*)$");
    }
    /// As it is, but for what only counts can tell.
    static Ends ends(const QString& batch) { return endsOf(output({batch}).err, RunLine); }

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
        Said inBatch;
        Said inWindow;
        QStringList last;
        Ends predicted;
        Ends ended;
        inFolder(make, [&] {
            put("judged.bat", lines.join('\n').toUtf8());
            predicted = predictedEnds("judged.bat");
            const Output run = output({"judged.bat"});
            ended = endsOf(run.err, RunLine);
            inBatch = {textsOf(run.err, "\\d+"), countsIn(run.out.trimmed().section('\n', -1))};
            last = textsOf(run.err, QString::number(lines.size()));
        });
        inFolder(make, [&] { inWindow = runWindow(lines); });
        QCOMPARE(predicted, ended);
        QCOMPARE(inOneOrder(inWindow.texts), inOneOrder(inBatch.texts));
        QCOMPARE(inWindow.counts, inBatch.counts);
        const QString said = last.join('\n');
        QVERIFY2(verdictOf(last) == verdict, qPrintable(said));
        QVERIFY2(said.contains(QRegularExpression(text)), qPrintable(said));
    }

    /// Does something in a fresh folder with the common files and those that are made.
    void inFolder(const Make& make, const std::function<void()>& what) {
        const QTemporaryDir folder;
        const QDir source(m_phantom->dir());
        for (const QString& name : source.entryList(QDir::Files)) {
            QVERIFY(QFile::copy(source.filePath(name), folder.filePath(name)));
            QFile copy(folder.filePath(name));  // of some time ago: files of now are not new yet
            QVERIFY(copy.open(QIODevice::ReadWrite) &&
                    copy.setFileTime(QDateTime::currentDateTime().addSecs(-60),
                                     QFileDevice::FileModificationTime));
        }
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder.path()));
        if (make) {
            make();
        }
        what();
        QVERIFY(QDir::setCurrent(before));
    }

  private:
    static constexpr char RunLine[] = "^line (\\d+): [^ ]+: (warning|)(.*)$";

    struct Output {
        QString out;
        QString err;
    };
    static Output output(const QStringList& arguments) {
        QProcess process;
        process.start(TARNWICK_BATCH, arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
            qWarning("tarnwick-batch did not come to its end");
        }
        return {QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static Ends endsOf(const QString& text, const char* pattern) {
        static const QRegularExpression onlyInTheRun(
            "have no counts at some energy|energies of the frames in all bins|most shifts are "
            "above|have no edge|"
            "percentiles of the frame are equal|are saturated|can be decoded|"
            "of 65535 steps|no bin of the map lies from");
        Ends ends;
        const QRegularExpression line(pattern, QRegularExpression::MultilineOption);
        QRegularExpressionMatchIterator it = line.globalMatch(text);
        while (it.hasNext()) {
            const QRegularExpressionMatch found = it.next();
            if (!found.captured(3).contains(onlyInTheRun) && found.captured(2) != "note") {
                const bool isWarning = found.captured(2) == "warning";
                QString& end = ends[found.captured(1).toInt()];
                end = isWarning && end != "failed" ? "warning" : "failed";
            }
        }
        return ends;
    }

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

    /// What counts tell is said of other lines where they are read when they are needed.
    static QString inOneOrder(QStringList texts) {
        static const QRegularExpression load("^failed: (I1|I0|dark): (?=.*can be decoded$)");
        for (QString& text : texts) {
            text.replace(load, "failed: ");
        }
        const auto isOfCounts = [](const QString& text) {
            return text.contains("are saturated") || text.contains("can be decoded");
        };
        std::stable_partition(texts.begin(), texts.end(), isOfCounts);
        return texts.join('\n');
    }

    /// What a program says of all lines in their order, and how many were done, done with a warning
    /// and failed.
    struct Said {
        QStringList texts;
        QString counts;
    };

    static QString countsIn(const QString& verdict) {
        static const QRegularExpression pattern(
            "^(\\d+) (?:lines? )?done, (\\d+) with a warning, (\\d+) failed");
        return pattern.match(verdict).capturedTexts().mid(1).join(' ');
    }

    /// What standard error says of the lines whose numbers match.
    static QStringList textsOf(const QString& err, const QString& numbers) {
        const QRegularExpression pattern("^line (?:" + numbers + "): [^ ]*: (warning: |)(.*)$",
                                         QRegularExpression::MultilineOption);
        QStringList texts;
        QRegularExpressionMatchIterator it = pattern.globalMatch(err);
        while (it.hasNext()) {
            const QRegularExpressionMatch found = it.next();
            texts << (found.captured(1).isEmpty() ? "failed: " : "warning: ") + found.captured(2);
        }
        return texts;
    }

    /// What the Progress Log and the foot of the batch window say.
    static Said runWindow(const QStringList& lines) {
        Body body;
        Said said;
        QObject::connect(body.batchCtrl(), &BatchCtrl::logged, [&said](const QString& log) {
            for (const QString& line : log.split('\n')) {
                if (line.startsWith("failed: ") || line.startsWith("warning: ")) {
                    said.texts << line;
                }
            }
        });
        if (!BatchRun(body).run(lines)) {
            qWarning("the window did not come to the end of the batch");
        }
        said.counts = countsIn(body.batchCtrl()->findChild<QLabel*>("Message")->text());
        return said;
    }

    std::unique_ptr<Phantom> m_phantom;
};
