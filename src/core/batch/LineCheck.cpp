#include "batch/LineCheck.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"
#include "batch/ForLoops.h"
#include "batch/LineItems.h"
#include "batch/NamedTexts.h"

namespace {

/// What is wrong with the quotes of a line; empty if nothing.
QString quoteProblem(const QString& line) {
    int i = 0;
    while (i < line.size()) {
        if (line.at(i).isSpace()) {
            ++i;
            continue;
        }
        if (line.at(i) == QLatin1Char('"')) {
            const int end = line.indexOf(QLatin1Char('"'), i + 1);
            if (end < 0) {
                return Batch::tr("a quote is opened but not closed");
            }
            i = end + 1;
            continue;
        }
        const int start = i;
        while (i < line.size() && !line.at(i).isSpace()) {
            ++i;
        }
        if (line.mid(start, i - start).contains(QLatin1Char('"'))) {
            return Batch::tr("a quote inside an item is part of it: start the item with it");
        }
    }
    return QString();
}

QString surplus(const QStringList& args, int wanted) {
    return args.size() > wanted ? Batch::tr("'%1' is ignored: too many arguments")
                                      .arg(args.mid(wanted).join(QLatin1Char(' ')))
                                : QString();
}

class FormChecker {
  public:
    FormChecker(const BatchText& text, const Report& report) : m_text(text), m_report(report) {}

    void check(const QVector<CheckedLine>& lines) {
        for (const CheckedLine& line : lines) {
            if (line.control == ForControl) {
                m_placeholders << line.cmd.arg(1);
            }
        }
        for (const CheckedLine& line : lines) {
            checkRemarks(line);
            checkContinuation(line);
            if (!line.inRemark) {
                warn(line.number, quoteProblem(line.cmd.text));
                checkControl(line);
            }
        }
        if (m_remark >= 0) {
            error(m_remark, Batch::tr("this remark is never closed by :rem_end"));
        }
        for (const auto& loop : m_open) {
            error(loop.second, Batch::tr("loop '%1' is never closed by :next").arg(loop.first));
        }
    }

  private:
    void error(int line, const QString& what) { m_report(line, false, what); }
    void warn(int line, const QString& what) {
        if (!what.isEmpty()) {
            m_report(line, true, what);
        }
    }

    void checkRemarks(const CheckedLine& line) {
        if (line.control == RemStartControl) {
            if (m_remark >= 0) {
                warn(line.number, Batch::tr("remarks do not nest: the first :rem_end ends it"));
            } else {
                m_remark = line.number;
            }
        } else if (line.control == RemEndControl) {
            if (m_remark < 0) {
                warn(line.number, Batch::tr(":rem_end without :rem_start"));
            }
            m_remark = -1;
        }
    }

    // Lines that a backslash has joined, although they look like lines of their own.
    void checkContinuation(const CheckedLine& line) {
        for (int i = line.first + 1; i <= line.last; ++i) {
            const QString word = CmdLine::parse(m_text.lines.at(i)).command;
            const bool ends = controlId(word) == RemEndControl;
            if (line.inRemark ? ends
                              : controlId(word) != NoControl || commandId(word) != NoCommand) {
                m_report(m_text.numbers.at(i), !ends,
                         Batch::tr("the backslash at the end of the line before makes '%1' part "
                                   "of that line")
                             .arg(word));
            }
        }
        QString end = m_text.lines.at(line.last);
        if (line.last + 1 == m_text.lines.size() && hasContinuation(end)) {
            warn(m_text.numbers.at(line.last),
                 Batch::tr("a backslash continues this line, but no line follows"));
        }
    }

    void checkControl(const CheckedLine& line) {
        switch (line.control) {
            case ForControl:
                checkFor(line);
                break;
            case NextControl:
                checkNext(line);
                break;
            case EchoControl:
                checkEcho(line);
                break;
            case NoControl:
                break;
            default:
                warn(line.number, surplus(line.cmd.args, 0));
                break;
        }
    }

    void checkEcho(const CheckedLine& line) {
        if (line.cmd.args.size() > 1) {
            warn(line.number,
                 Batch::tr("only '%1' is echoed: put the text in quotes").arg(line.cmd.arg(0)));
        }
        const QString name = leftOverName(line.cmd.arg(0));
        if (!name.isEmpty() && !m_placeholders.contains(name)) {
            error(line.number, aboutLeftOver(name));
        }
    }

    void checkFor(const CheckedLine& line) {
        ForLoops loops;
        const ForLoop loop = loops.begin(line.cmd.args, line.last);
        if (loop.to.isEmpty()) {
            error(line.number, Batch::tr(":for needs four arguments: name placeholder from to"));
        } else {
            warn(line.number, surplus(line.cmd.args, 4));
            for (const QString& bound : {loop.from, loop.to}) {
                bool ok = false;
                bound.toInt(&ok);
                if (!ok) {
                    error(line.number,
                          Batch::tr("'%1' is not an integer and counts as 0").arg(bound));
                }
            }
        }
        const auto old = find(loop.name);
        if (old != m_open.end()) {
            error(old->second,
                  Batch::tr("loop '%1' is not closed before another :for starts it anew")
                      .arg(loop.name));
            m_open.erase(old);
        }
        m_open.emplace_back(loop.name, line.number);
    }

    void checkNext(const CheckedLine& line) {
        warn(line.number, surplus(line.cmd.args, 1));
        const QString name = line.cmd.arg(0);
        const auto loop = find(name);
        if (loop == m_open.end()) {
            error(line.number, Batch::tr(":next without :for of the name '%1'").arg(name));
            return;
        }
        if (loop != m_open.end() - 1) {
            warn(line.number, Batch::tr("loop '%1' ends before loop '%2' inside it")
                                  .arg(name, m_open.back().first));
        }
        m_open.erase(loop);
    }

    using Open = std::vector<std::pair<QString, int>>;
    Open::iterator find(const QString& name) {
        return std::find_if(m_open.begin(), m_open.end(),
                            [&name](const auto& loop) { return loop.first == name; });
    }

    const BatchText& m_text;
    const Report& m_report;
    int m_remark = -1;  // line of the :rem_start that is open
    Open m_open;        // loops: name, line
    QStringList m_placeholders;
};

}  // namespace

QVector<CheckedLine> logicalLines(const BatchText& text, bool inRemark) {
    QVector<CheckedLine> lines;
    for (int i = 0; i < text.lines.size(); ++i) {
        CheckedLine line;
        line.first = i;
        line.cmd = CmdLine::parse(readLogicalLine(text.lines, &i));
        line.last = i;
        line.number = text.lineNumber(line.first);
        line.control = controlId(line.cmd.command);
        line.command = commandId(line.cmd.command);
        if (line.control == RemStartControl) {
            inRemark = true;
        } else if (line.control == RemEndControl) {
            inRemark = false;
        }
        line.inRemark = inRemark;
        lines.append(line);
    }
    return lines;
}

void checkForm(const BatchText& text, const QVector<CheckedLine>& lines, const Report& report) {
    FormChecker(text, report).check(lines);
}

QHash<int, Outcome> problemsOfForm(const QStringList& lines, bool inRemark) {
    const SilentItems silent;  // what is said of items is said when they are taken
    BatchText text;
    text.lines = lines;
    for (int i = 0; i < lines.size(); ++i) {
        text.numbers << i;
        text.first << i;
    }
    QVector<int> lastOf(lines.size());
    const QVector<CheckedLine> logical = logicalLines(text, inRemark);
    for (const CheckedLine& line : logical) {
        std::fill(lastOf.begin() + line.first, lastOf.begin() + line.last + 1, line.last);
    }
    QHash<int, Outcome> problems;
    checkForm(text, logical, [&](int line, bool warning, const QString& what) {
        Outcome& outcome = problems[lastOf.at(line)];
        (warning ? outcome.warnings : outcome.failures) << what;
    });
    return problems;
}
