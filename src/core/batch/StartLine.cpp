#include "batch/StartLine.h"

#include <QHash>
#include <algorithm>
#include <utility>
#include <vector>

#include "batch/CommandTables.h"
#include "batch/LineCheck.h"

namespace {

/// Indices of the beginnings of :for and :next.
std::vector<std::pair<int, int>> loopsIn(const QVector<CheckedLine>& lines) {
    std::vector<std::pair<int, int>> loops;
    QHash<QString, int> open;
    for (const CheckedLine& line : lines) {
        const QString name = line.cmd.arg(0);
        if (line.inRemark) {
            continue;
        }
        if (line.control == ForControl) {
            open.insert(name, line.first);
        } else if (line.control == NextControl && open.contains(name)) {
            loops.emplace_back(open.take(name), line.first);
        }
    }
    return loops;
}

}  // namespace

std::optional<int> startIndex(const BatchText& text, int line) {
    const QVector<CheckedLine> lines = logicalLines(text);
    const auto at = std::find_if(lines.begin(), lines.end(), [&](const CheckedLine& checked) {
        return text.numbers.at(checked.last) >= line;
    });
    if (at == lines.end()) {
        return std::nullopt;
    }
    int start = at->first;
    const auto loops = loopsIn(lines);
    const auto around = [&start](const std::pair<int, int>& loop) {
        return loop.first < start && start <= loop.second;
    };
    for (auto loop = std::find_if(loops.begin(), loops.end(), around); loop != loops.end();
         loop = std::find_if(loops.begin(), loops.end(), around)) {
        start = loop->first;  // which may lie in another one
    }
    return start;
}
