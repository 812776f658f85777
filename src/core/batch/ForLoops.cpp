#include "batch/ForLoops.h"

#include <algorithm>

#include "base/Limits.h"
#include "batch/LineItems.h"

const ForLoop& ForLoops::begin(const QStringList& args, int forLine) {
    ForLoop loop;
    QString rest = args.join(QLatin1Char(' '));
    for (QString* item : {&loop.name, &loop.placeholder, &loop.from, &loop.to}) {
        if (!rest.isEmpty()) {
            rest = takeItem(rest, item);
        }
    }
    loop.forLine = forLine;
    loop.value = loop.from;
    const auto old = std::find_if(m_loops.begin(), m_loops.end(),
                                  [&loop](const ForLoop& l) { return l.name == loop.name; });
    if (old != m_loops.end()) {
        m_loops.erase(old);
    }
    m_loops.push_back(loop);
    return m_loops.back();
}

const ForLoop* ForLoops::find(const QString& name) const {
    const auto it = std::find_if(m_loops.begin(), m_loops.end(),
                                 [&name](const ForLoop& l) { return l.name == name; });
    return it == m_loops.end() ? nullptr : &*it;
}

bool ForLoops::step(const QString& name) {
    const auto it = std::find_if(m_loops.begin(), m_loops.end(),
                                 [&name](const ForLoop& l) { return l.name == name; });
    if (it == m_loops.end()) {
        return false;
    }
    const int from = it->from.toInt();
    const int to = it->to.toInt();
    const int value = it->value.toInt();
    const bool down = from >= to;
    if (down ? to >= value : to <= value) {
        return false;
    }
    it->value = QString::number(down ? value - 1 : value + 1);
    return true;
}

bool ForLoops::substitute(QStringList* args) const {
    bool plain = true;
    for (QString& arg : *args) {
        int left = Limits::MostReplacements;
        for (const ForLoop& loop : m_loops) {
            const QString& placeholder = loop.placeholder;
            if (placeholder.isEmpty()) {
                continue;
            }
            const bool holdsItself = loop.value.contains(placeholder);
            int at = arg.indexOf(placeholder);
            plain = plain && !(holdsItself && at >= 0);
            while (at >= 0 && left > 0 && arg.size() < Limits::LongestArgument) {
                arg.replace(at, placeholder.size(), loop.value);
                --left;
                at = arg.indexOf(placeholder, holdsItself ? at + loop.value.size() : 0);
            }
            plain = plain && at < 0;
        }
    }
    return plain;
}
