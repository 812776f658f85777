#include <QByteArray>
#include <QList>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

#include "batch/ArgumentWords.h"
#include "batch/BatchTargets.h"
#include "batch/CommandTables.h"

// Changes a batch by lines and arguments, drawn from the tables of the commands, and now and then
// by bytes.

// Called by libFuzzer, and a function of it.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t most, unsigned seed);
extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t most);

namespace {

using Random = std::minstd_rand;

constexpr std::size_t LongestBatch = 110;

int below(Random& random, int end) {
    return static_cast<int>(random() % static_cast<unsigned>(std::max(1, end)));
}

const QByteArray& anyOf(Random& random, const QList<QByteArray>& texts) {
    return texts.at(below(random, texts.size()));
}

/// Values that lines of a tiny measurement work with, and those at the ends of what can be said.
const QList<QByteArray>& numbers() {
    static const QList<QByteArray> all{
        "0",     "1",      "2",      "3",      "4",    "7",    "8",          "9",
        "-1",    "-2",     "0.5",    "-0.5",   "1e-9", "0.1",  "10",         "100",
        "7020",  "7105",   "7110",   "7110.5", "7200", "9999", "2147483647", "-2147483648",
        "1e308", "-1e308", "5e-324", "1e999",  "nan",  "inf",  "007",        "4294967296",
        "+1",    "1.",     ".5",     "1,5",    "0x10", "1e5",  "32768",      "65535"};
    return all;
}

const QList<QByteArray>& patterns() {
    static const QList<QByteArray> all{"*.tif",      "*",     "s-71*",  "?-*eV.tif",   "[\\d_]+eV",
                                       "d[0-9].tif", "*.emp", "(\\d+)", "s-(?<e>\\d+)"};
    return all;
}

const QList<QByteArray>& outputs() {
    static const QList<QByteArray> all{"out/a.png",   "out/b.tif",  "out/c.csv", "out/d.txt",
                                       "out/e.nxs",   "out/f.bat",  "out/g.emp", "out/none/h.png",
                                       "\"out/a b\"", "out/%r.tif", "out",       "out/a.jpg"};
    return all;
}

QList<QByteArray> files() {
    QList<QByteArray> all;
    for (const QString& name : tinyFolder().names()) {
        all << name.toUtf8();
    }
    return all;
}

QByteArray nameOf(Random& random, ArgKind kind) {
    static const QList<QByteArray> there = files();
    if (kind == ArgKind::Pattern || below(random, 20) == 0) {
        return anyOf(random, patterns());
    }
    return anyOf(random, (kind == ArgKind::OutFile) == (below(random, 8) != 0) ? outputs() : there);
}

QByteArray argument(Random& random, ArgKind kind) {
    if (below(random, 25) == 0) {
        return anyOf(random, {"%r", "%s", "\"\"", "\"", "%NAME%", "\\"});
    }
    const QStringList words = argumentWords(kind);
    if (!words.isEmpty() && (!mayBeNumber(kind) || below(random, 2) == 0)) {
        return words.at(below(random, words.size())).toUtf8();
    }
    switch (kind) {
        case ArgKind::Flag:
            return anyOf(random, {"0", "1"});
        case ArgKind::InFile:
        case ArgKind::OutFile:
        case ArgKind::Directory:
        case ArgKind::Pattern:
            return nameOf(random, kind);
        case ArgKind::Text:
            return anyOf(random, {"counts", "absorption", "difference", "eV", "k", "7110",
                                  "[\\d_]+eV", "2theta", "s-(\\d+)", ""});
        default:
            return anyOf(random, below(random, 3) != 0 ? numbers().mid(0, 8) : numbers());
    }
}

QByteArray commandLine(Random& random) {
    const auto& table = commandTable();
    const CommandRow& row = table[static_cast<std::size_t>(below(random, int(table.size())))];
    QByteArray line = row.name;
    int count = static_cast<int>(row.args.size());
    count -= count > row.required ? below(random, count - row.required + 1) : 0;
    count += row.repeats ? below(random, 4) : below(random, 20) == 0 ? 1 : 0;
    count -= below(random, 20) == 0 ? 1 : 0;
    for (int i = 0; i < count && !row.args.empty(); ++i) {
        const int kind = std::min(i, static_cast<int>(row.args.size()) - 1);
        line += ' ' + argument(random, row.args[static_cast<std::size_t>(kind)]);
    }
    return line;
}

QByteArray anyLine(Random& random) {
    if (below(random, 8) != 0) {
        return commandLine(random);
    }
    return anyOf(random, {":for a %r 0 2", ":next a", ":for b %s 3 1", ":next b", ":rem_start",
                          ":rem_end", ":echo \"%r\"", "", "no_command", "# note", ":for a r 0 1"});
}

/// Another value in the place of one argument.
void changeArgument(Random& random, QByteArray* line) {
    QList<QByteArray> items = line->split(' ');
    if (items.size() < 2) {
        *line = anyLine(random);
        return;
    }
    const CommandRow* row = commandRow(commandId(QString::fromUtf8(items.first())));
    const int at = 1 + below(random, items.size() - 1);
    const bool isKnown = row != nullptr && !row->args.empty();
    const int last = isKnown ? static_cast<int>(row->args.size()) - 1 : 0;
    items[at] = isKnown
                    ? argument(random, row->args[static_cast<std::size_t>(std::min(at - 1, last))])
                    : anyOf(random, numbers());
    *line = items.join(' ');
}

/// Nothing but loops and words goes without frames. Now and then some of them only.
void load(Random& random, QList<QByteArray>* lines) {
    if (lines->contains(Loading)) {
        return;
    }
    if (below(random, 6) != 0) {
        lines->prepend(Loading);
        return;
    }
    const QStringList& all = loadingLines();
    lines->prepend(all.at(below(random, all.size())).toUtf8());
}

/// A line to change; seldom the one that loads, for without frames most others fail.
int lineToChange(Random& random, const QList<QByteArray>& lines) {
    int at = below(random, lines.size());
    for (int i = 0; i < 3 && lines.at(at) == Loading; ++i) {
        at = below(random, lines.size());
    }
    return at;
}

void change(Random& random, QList<QByteArray>* lines) {
    const int at = lineToChange(random, *lines);
    switch (below(random, 10)) {
        case 0:
            lines->removeAt(at);
            return;
        case 1:
            lines->insert(below(random, lines->size() + 1), QByteArray(lines->at(at)));
            return;
        case 2:
            lines->move(at, below(random, lines->size()));
            return;
        case 3:
        case 4:
            changeArgument(random, &(*lines)[at]);
            return;
        case 5: {
            lines->insert(at, ":for a %r 0 " + QByteArray::number(below(random, 4)));
            lines->insert(at + 1 + below(random, lines->size() - at), ":next a");
            return;
        }
        case 6:
            load(random, lines);
            return;
        default:
            lines->insert(below(random, lines->size() + 1), anyLine(random));
    }
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t most, unsigned seed) {
    Random random(seed);
    most = std::min(most, LongestBatch);
    size = std::min(size, most);
    if (below(random, 8) == 0) {
        return LLVMFuzzerMutate(data, size, most);
    }
    QList<QByteArray> lines =
        QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)).split('\n');
    for (int i = below(random, 4); i >= 0; --i) {
        if (lines.isEmpty()) {
            lines << QByteArray();
        }
        change(random, &lines);
    }
    const QByteArray text = lines.join('\n').left(static_cast<int>(most));
    std::memcpy(data, text.constData(), static_cast<std::size_t>(text.size()));
    return static_cast<std::size_t>(text.size());
}
