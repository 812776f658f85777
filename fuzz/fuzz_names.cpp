#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "Fuzz.h"
#include "batch/BatchLine.h"
#include "batch/BatchText.h"
#include "batch/CmdLine.h"
#include "batch/NamedTexts.h"
#include "files/FileListing.h"
#include "files/FileNames.h"
#include "frames/EnergyFromName.h"
#include "measurement/Stack.h"

// Texts that names are made of and read by. An input is lines: a pattern of energies, then names.

namespace {

void energies(const QString& pattern, const QStringList& names) {
    const QRegularExpression expression(pattern);
    for (const QString& name : names) {
        const std::optional<double> found = numberFromName(name, expression);
        require(!found || expression.isValid(), "no number without a pattern");
        require(!found || std::isfinite(*found), "a number is finite:", name);
        for (const bool isKeV : {false, true}) {
            const double energy = frameEnergy(name, {pattern, isKeV}, 3);
            const double wanted = found.value_or(2.0) * (isKeV ? 1000.0 : 1.0);
            require(energy == wanted, "the energy is that of the name:", name);
        }
        require(found || !cutsNumber(name, expression), "what is not found is not cut:", name);
    }
}

void order(const QStringList& names) {
    for (const QString& a : names) {
        require(!comesBefore(a, a), "no name comes before itself:", a);
        for (const QString& b : names) {
            require(a == b || comesBefore(a, b) != comesBefore(b, a), "one comes first:", a);
            for (const QString& c : names) {
                require(!comesBefore(a, b) || !comesBefore(b, c) || comesBefore(a, c),
                        "an order:", a);
            }
        }
    }
}

/// What is written as a batch line is read as it was, also through a text.
void lines(const QStringList& names) {
    if (names.isEmpty()) {
        return;
    }
    const QStringList args = names.mid(1);
    const auto written = batchLine(names.first(), args);
    if (!written) {
        return;
    }
    const QStringList read =
        BatchText::fromLines(written->join(QLatin1Char('\n')).split('\n')).lines;
    int at = 0;
    const CmdLine line = CmdLine::parse(readLogicalLine(read, &at));
    require(at + 1 == read.size(), "one line is written:", written->join(QLatin1Char('\n')));
    require(line.command == names.first() && line.args == args,
            "a line is read as it was written:", written->join(QLatin1Char('\n')));
}

/// The root is its own parent, which a clean path may still spell out.
bool isClean(const QString& path) {
    return QDir::cleanPath(path) == path && !path.startsWith(QLatin1String("/.."));
}

void folders(const QStringList& names) {
    for (const QString& folder : names) {
        for (const QString& file : names) {
            const bool isName =
                file.startsWith('/') && !file.endsWith('/') && folder.startsWith('/');
            // Nothing lies at these names, so that no link is between them.
            if (isName && isClean(file) && isClean(folder)) {
                const QString name = relativeTo(folder, file);
                require(QDir::cleanPath(QDir(folder).absoluteFilePath(name)) == file,
                        "a relative name leads there:", name);
            }
        }
    }
}

void named(const QStringList& texts) {
    QVector<NamedText> all;
    for (const QString& text : texts) {
        NamedText one;
        if (readNamedText(text, &one).isEmpty()) {
            require(one.name + QLatin1Char('=') + one.text == text, "a named text is whole:", text);
            all << one;
        }
    }
    QStringList replaced = texts;
    const QStringList unused = replaceNamed(all, &replaced);
    require(replaced.size() == texts.size(), "as many lines as there were");
    for (int i = 0; i < texts.size(); ++i) {
        const QString left = leftOverName(texts.at(i));
        require(!left.isEmpty() || replaced.at(i) == texts.at(i),
                "nothing else is replaced:", texts.at(i));
        const bool isKnown = std::any_of(all.begin(), all.end(), [&](const NamedText& each) {
            return left == QLatin1Char('%') + each.name + QLatin1Char('%');
        });
        require(!isKnown || !unused.contains(left.mid(1, left.size() - 2)),
                "what stands somewhere is replaced:", left);
    }
}

}  // namespace

void fuzz(const QByteArray& input) {
    const QString text = QString::fromUtf8(input);
    const QStringList all = text.split(QLatin1Char('\n')).mid(0, 8);
    const QStringList names = all.mid(1);
    energies(all.first(), names);
    order(names);
    lines(names);
    folders(names);
    named(names);
}
