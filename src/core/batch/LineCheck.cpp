#include "batch/LineCheck.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "batch/CommandTables.h"
#include "batch/ForLoops.h"
#include "batch/LineItems.h"

namespace {

/// Number of single-character changes between two words.
int distance(const QString& a, const QString& b) {
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    for (std::size_t j = 0; j < row.size(); ++j) {
        row[j] = static_cast<int>(j);
    }
    for (int i = 0; i < a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < b.size(); ++j) {
            const auto k = static_cast<std::size_t>(j);
            const int changed = diagonal + (a.at(i) == b.at(j) ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({changed, diagonal + 1, row[k] + 1});
        }
    }
    return row.back();
}

/// " (did you mean x?)" where a known word is near, else nothing.
QString suggestion(const QString& word) {
    if (word.size() > 60) {
        return QString();
    }
    QStringList known{QStringLiteral(":for"), QStringLiteral(":next"), QStringLiteral(":echo"),
                      QStringLiteral(":rem_start"), QStringLiteral(":rem_end")};
    for (const CommandRow& row : commandTable()) {
        known.append(QString::fromLatin1(row.name));
    }
    QString best;
    int least = 4;
    for (const QString& name : qAsConst(known)) {
        const int d = distance(word.toLower(), name.toLower());
        if (d < least && d * 2 <= name.size()) {
            least = d;
            best = name;
        }
    }
    return best.isEmpty() ? QString() : QStringLiteral(" (did you mean %1?)").arg(best);
}

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
                return QStringLiteral("a quote is opened but not closed");
            }
            i = end + 1;
            continue;
        }
        const int start = i;
        while (i < line.size() && !line.at(i).isSpace()) {
            ++i;
        }
        if (line.mid(start, i - start).contains(QLatin1Char('"'))) {
            return QStringLiteral("a quote inside an item is part of it: start the item with it");
        }
    }
    return QString();
}

class LineChecker {
  public:
    LineChecker(const BatchText& text, const Report& report) : m_text(text), m_report(report) {}

    void check(const QVector<CheckedLine>& lines) {
        for (const CheckedLine& line : lines) {
            checkRemarks(line);
            checkContinuation(line);
            if (!line.inRemark) {
                checkWords(line);
            }
        }
        if (m_remark > 0) {
            error(m_remark, QStringLiteral("this remark is never closed by :rem_end"));
        }
        for (const auto& loop : m_open) {
            error(loop.second,
                  QStringLiteral("loop '%1' is never closed by :next").arg(loop.first));
        }
    }

  private:
    void error(int line, const QString& what) { m_report(line, false, what); }
    void warn(int line, const QString& what) { m_report(line, true, what); }

    void checkRemarks(const CheckedLine& line) {
        if (line.control == RemStartControl) {
            if (m_remark > 0) {
                warn(line.number,
                     QStringLiteral("remarks do not nest: the first :rem_end ends it"));
            } else {
                m_remark = line.number;
            }
        } else if (line.control == RemEndControl) {
            if (m_remark == 0) {
                warn(line.number, QStringLiteral(":rem_end without :rem_start"));
            }
            m_remark = 0;
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
                         QStringLiteral("the backslash at the end of the line before makes '%1' "
                                        "part of that line")
                             .arg(word));
            }
        }
        QString end = m_text.lines.at(line.last);
        if (line.last + 1 == m_text.lines.size() && hasContinuation(end)) {
            error(m_text.numbers.at(line.last),
                  QStringLiteral("a backslash continues this line, but no line follows"));
        }
    }

    void checkWords(const CheckedLine& line) {
        const QString quotes = quoteProblem(line.cmd.text);
        if (!quotes.isEmpty()) {
            error(line.number, quotes);
        }
        if (line.control != NoControl) {
            checkControl(line);
        } else if (line.command != NoCommand) {
            checkCount(line);
        } else if (line.cmd.command.startsWith(QLatin1Char('#'))) {
            error(line.number, QStringLiteral("'#' does not start a comment: "
                                              "use :rem_start and :rem_end"));
        } else {
            error(line.number, QStringLiteral("unknown command '%1'").arg(line.cmd.command) +
                                   suggestion(line.cmd.command));
        }
    }

    void checkCount(const CheckedLine& line) {
        const CommandRow& row = *commandRow(line.command);
        const int count = line.cmd.args.size();
        if (count < row.required) {
            error(line.number, QStringLiteral("too few arguments: ") + commandSyntax(row));
        }
        checkSurplus(line, row.repeats ? count : static_cast<int>(row.args.size()));
    }

    void checkSurplus(const CheckedLine& line, int wanted) {
        if (line.cmd.args.size() > wanted) {
            warn(line.number, QStringLiteral("'%1' is ignored: too many arguments")
                                  .arg(line.cmd.args.mid(wanted).join(QLatin1Char(' '))));
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
                if (line.cmd.args.size() > 1) {
                    warn(line.number, QStringLiteral("only '%1' is echoed: put the text in quotes")
                                          .arg(line.cmd.arg(0)));
                }
                break;
            default:
                checkSurplus(line, 0);
                break;
        }
    }

    void checkFor(const CheckedLine& line) {
        ForLoops loops;
        const ForLoop loop = loops.begin(line.cmd.args, line.last);
        if (loop.to.isEmpty()) {
            error(line.number,
                  QStringLiteral(":for needs four arguments: name placeholder from to"));
        } else {
            checkSurplus(line, 4);
            for (const QString& bound : {loop.from, loop.to}) {
                bool ok = false;
                bound.toInt(&ok);
                if (!ok) {
                    warn(line.number,
                         QStringLiteral("'%1' is not an integer and counts as 0").arg(bound));
                }
            }
        }
        const auto old = find(loop.name);
        if (old != m_open.end()) {
            error(old->second,
                  QStringLiteral("loop '%1' is not closed before :for in line %2 starts it anew")
                      .arg(loop.name, QString::number(line.number)));
            m_open.erase(old);
        }
        m_open.emplace_back(loop.name, line.number);
    }

    void checkNext(const CheckedLine& line) {
        checkSurplus(line, 1);
        const QString name = line.cmd.arg(0);
        const auto loop = find(name);
        if (loop == m_open.end()) {
            error(line.number, QStringLiteral(":next without :for of the name '%1'").arg(name));
            return;
        }
        if (loop != m_open.end() - 1) {
            warn(line.number, QStringLiteral("loop '%1' ends before loop '%2' inside it")
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
    int m_remark = 0;  // line of the :rem_start that is open
    Open m_open;       // loops: name, line
};

}  // namespace

QVector<CheckedLine> logicalLines(const BatchText& text) {
    QVector<CheckedLine> lines;
    bool inRemark = false;
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

void checkLines(const BatchText& text, const QVector<CheckedLine>& lines, const Report& report) {
    LineChecker(text, report).check(lines);
}
