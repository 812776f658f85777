#include "batch/BatchCheck.h"

#include <QSet>
#include <algorithm>

#include "batch/BatchText.h"
#include "batch/CommandCheck.h"
#include "batch/CommandTables.h"
#include "batch/ForLoops.h"
#include "batch/LineCheck.h"

namespace {

/// More of one line would only bury the rest.
constexpr int MaxFindingsOfLine = 5;

/// Findings without repetitions, bounded for each line.
class Findings {
  public:
    void add(int line, bool warning, const QString& text) {
        const QString key = QString::number(line) + QLatin1Char(' ') + text;
        if (m_seen.contains(key)) {
            return;
        }
        const int count = ++m_ofLine[line];
        if (count > MaxFindingsOfLine + 1) {
            Finding& more = m_found[m_more.value(line)];
            more.warning = more.warning && warning;
            return;
        }
        if (count == MaxFindingsOfLine + 1) {
            m_more.insert(line, m_found.size());
            m_found.append({line, warning, QStringLiteral("and more of this kind")});
            return;
        }
        m_seen.insert(key);
        m_found.append({line, warning, text});
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

/// Goes through a batch as it would run, loops included, without doing anything.
class DryRun {
  public:
    DryRun(const QVector<CheckedLine>& lines, Findings* findings, qint64 effort)
        : m_lines(lines),
          m_findings(findings),
          m_effort(effort),
          m_commands([this](bool warning, const QString& text) { report(warning, text); }) {}

    void run() {
        int reached = 0;
        for (m_at = 0; m_at < m_lines.size(); ++m_at) {
            reached = std::max(reached, m_at);
            if (m_effort < 0 && m_followsLoops) {
                m_at = reached;
                report(true, QStringLiteral("too many steps: from here on loops are not followed"));
                m_followsLoops = false;
            }
            step(m_lines.at(m_at));
        }
    }

  private:
    void report(bool warning, const QString& text) {
        m_findings->add(m_lines.at(m_at).number, warning, text);
    }

    void step(const CheckedLine& line) {
        m_effort -= 1 + line.cmd.text.size() / 64;
        if (line.inRemark) {
            return;
        }
        if (line.control == ForControl) {
            checkValue(m_loops.begin(line.cmd.args, m_at));
        } else if (line.control == NextControl) {
            next(line.cmd.arg(0));
        } else if (line.command != NoCommand) {
            command(line);
        }
    }

    void next(const QString& name) {
        if (m_followsLoops && m_loops.step(name)) {
            const ForLoop& loop = *m_loops.find(name);
            checkValue(loop);
            m_at = loop.forLine;
        }
    }

    void checkValue(const ForLoop& loop) {
        // A loop without a placeholder lacks arguments; that has been said.
        if (!loop.placeholder.isEmpty() && loop.value.contains(loop.placeholder)) {
            m_selfHolding = true;
            m_findings->add(m_lines.at(loop.forLine).number, false,
                            QStringLiteral("endless substitution: the value %1 holds the "
                                           "placeholder '%2'")
                                .arg(loop.value, loop.placeholder));
        }
    }

    void command(const CheckedLine& line) {
        CmdLine cmd = line.cmd;
        m_effort -= cmd.args.size();
        if (!m_loops.substitute(&cmd.args)) {
            m_effort -= ForLoops::MaxReplacements + line.cmd.text.size();
            if (!m_selfHolding) {
                report(false, QStringLiteral("endless substitution of a loop variable"));
                return;
            }
        }
        m_commands.check(*commandRow(line.command), cmd);
    }

    const QVector<CheckedLine>& m_lines;
    Findings* m_findings;
    qint64 m_effort;
    int m_at = 0;
    bool m_followsLoops = true;
    bool m_selfHolding = false;
    ForLoops m_loops;
    CommandCheck m_commands;
};

}  // namespace

QVector<Finding> checkBatch(const QStringList& lines, qint64 effort) {
    const BatchText text = BatchText::fromLines(lines);
    const QVector<CheckedLine> logical = logicalLines(text);
    Findings findings;
    checkLines(text, logical, [&findings](int line, bool warning, const QString& what) {
        findings.add(line, warning, what);
    });
    DryRun(logical, &findings, effort).run();
    return std::move(findings).sorted();
}
