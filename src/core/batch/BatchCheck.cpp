#include "batch/BatchCheck.h"

#include <QEventLoop>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <limits>

#include "batch/BatchRunner.h"
#include "batch/BatchText.h"
#include "batch/CommandTables.h"
#include "batch/ForLoops.h"
#include "batch/LineCheck.h"

namespace {

/// More of one line would only bury the rest.
constexpr int MaxFindingsOfLine = 5;

/// Findings without repetitions, bounded for each line.
class Findings {
  public:
    void add(int line, Finding::Kind kind, const QString& text) {
        const QString key = QString::number(line) + QLatin1Char(' ') + text;
        if (m_seen.contains(key)) {
            return;
        }
        const int count = ++m_ofLine[line];
        if (count > MaxFindingsOfLine + 1) {
            Finding& more = m_found[m_more.value(line)];
            more.kind = std::min(more.kind, kind);
            return;
        }
        if (count == MaxFindingsOfLine + 1) {
            m_more.insert(line, m_found.size());
            m_found.append({line, kind, QStringLiteral("and more of this kind")});
            return;
        }
        m_seen.insert(key);
        m_found.append({line, kind, text});
    }

    QVector<Finding> sorted() && {
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
        return m_found;
    }

  private:
    QVector<Finding> m_found;
    QSet<QString> m_seen;
    QHash<int, int> m_ofLine;
    QHash<int, int> m_more;  // index of the finding that stands for the rest
};

/// Carries a batch out in a rehearsal.
void rehearse(Measurement& measurement, const BatchText& text, const QString& file,
              Findings* findings, qint64 effort, int start) {
    measurement.rehearse();
    measurement.setBatchFile(file);
    BatchRunner runner(measurement);
    runner.leaveOutSavesBefore(start);
    BatchDispatcher* dispatcher = runner.dispatcher();
    QEventLoop loop;
    QObject::connect(
        &runner, &BatchRunner::commandDone, &loop, [&](const CmdLine& cmd, const Outcome& outcome) {
            const int line = text.lineNumber(dispatcher->lineInWork());
            for (const QString& failure : outcome.failures) {
                findings->add(line, Finding::Kind::Error, failure);
            }
            for (const QString& warning : outcome.warnings) {
                findings->add(line, Finding::Kind::Warning, warning);
            }
            const CommandRow* row = commandRow(commandId(cmd.command));
            if (row != nullptr && row->work != Work::None) {
                for (const QString& note : outcome.notes) {
                    findings->add(line, Finding::Kind::Note, note);
                }
            }
            const bool hadEffort = effort >= 0;
            effort -= 1 + cmd.text.size() / 64 + cmd.args.size();
            if (hadEffort && effort < 0) {
                findings->add(
                    line, Finding::Kind::Note,
                    QStringLiteral("too many steps: from here on loops are not followed"));
                dispatcher->leaveLoops();
            }
        });
    QObject::connect(dispatcher, &BatchDispatcher::ended, &loop, &QEventLoop::quit);
    runner.start(text.lines);
    loop.exec();
}

/// What is likely to be meant otherwise of the loops, although their lines do their work.
void checkLoops(const BatchText& text, Findings* findings) {
    QVector<QPair<int, ForLoop>> loops;  // with the number of the line
    for (const CheckedLine& line : logicalLines(text)) {
        if (line.control == ForControl && !line.inRemark) {
            ForLoops parsed;
            loops.append({line.number, parsed.begin(line.cmd.args, line.last)});
        }
    }
    const auto warn = [findings](int line, const QString& what) {
        findings->add(line, Finding::Kind::Warning, what);
    };
    for (const auto& [line, loop] : loops) {
        if (loop.from.toInt() != loop.to.toInt() &&
            QString::number(loop.from.toInt()).size() < loop.from.size()) {
            warn(line,
                 QStringLiteral("zeros in front are kept in the first round only: %1, then %2")
                     .arg(loop.from)
                     .arg(loop.from.toInt() + (loop.from.toInt() < loop.to.toInt() ? 1 : -1)));
        }
        for (const auto& other : loops) {
            if (!loop.placeholder.isEmpty() && other.second.placeholder != loop.placeholder &&
                other.second.placeholder.contains(loop.placeholder)) {
                warn(line,
                     QStringLiteral("'%1' is replaced inside the placeholder '%2' of line %3, "
                                    "too")
                         .arg(loop.placeholder, other.second.placeholder)
                         .arg(other.first));
            }
        }
    }
}

}  // namespace

QVector<Finding> checkBatch(const QStringList& lines, const QString& file, qint64 effort, int start,
                            bool readsCountsWhenNeeded) {
    const BatchText text = BatchText::fromLines(lines);
    Findings findings;
    checkLoops(text, &findings);
    Measurement measurement;
    if (readsCountsWhenNeeded) {
        measurement.readCountsWhenNeeded();
    }
    rehearse(measurement, text, file, &findings, effort, start);
    return std::move(findings).sorted();
}

BatchPlan planOf(const QStringList& lines, const QString& file) {
    const BatchText text = BatchText::fromLines(lines);
    Findings findings;
    Measurement measurement;
    rehearse(measurement, text, file, &findings, std::numeric_limits<qint64>::max(), 0);
    BatchPlan plan;
    plan.passes = measurement.rehearsal()->passes();
    plan.readBack = measurement.rehearsal()->readBack();
    plan.errors = std::move(findings).sorted();
    plan.errors.erase(
        std::remove_if(plan.errors.begin(), plan.errors.end(),
                       [](const Finding& each) { return each.kind != Finding::Kind::Error; }),
        plan.errors.end());
    return plan;
}

namespace {

bool isAny(const QVector<CheckedLine>& lines, int first, int end,
           bool (CommandRow::*does)() const) {
    return std::any_of(lines.begin() + first, lines.begin() + end, [does](const CheckedLine& line) {
        const CommandRow* row = line.inRemark ? nullptr : commandRow(line.command);
        return row != nullptr && (row->*does)();
    });
}

/// The line behind the last :next of a loop; that behind its :for where there is none.
int endOfLoop(const QVector<CheckedLine>& lines, int start) {
    int end = start + 1;
    for (int i = end; i < lines.size(); ++i) {
        const bool ends = lines[i].control == NextControl && !lines[i].inRemark &&
                          lines[i].cmd.arg(0) == lines[start].cmd.arg(0);
        end = ends ? i + 1 : end;
    }
    return end;
}

/// Whether a line may read what one before has saved: in a loop each line comes before each other.
bool mayReadBack(const QVector<CheckedLine>& lines) {
    for (int i = 0; i < lines.size(); ++i) {
        const bool loops = lines[i].control == ForControl && !lines[i].inRemark;
        const int end = loops ? endOfLoop(lines, i) : i + 1;
        if (isAny(lines, i, end, &CommandRow::saves) &&
            isAny(lines, i, loops ? end : lines.size(), &CommandRow::reads)) {
            return true;
        }
    }
    return false;
}

}  // namespace

QSet<QString> readBackOf(const QStringList& lines, const QString& file) {
    return mayReadBack(logicalLines(BatchText::fromLines(lines))) ? planOf(lines, file).readBack
                                                                  : QSet<QString>();
}
