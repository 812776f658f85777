#include "measurement/NewFrames.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "files/Answer.h"
#include "files/FileListing.h"
#include "files/OriginText.h"
#include "frames/TiffFile.h"
#include "measurement/Stack.h"

namespace {

/// Stands for what the energy pattern finds; no name holds it.
constexpr char Energy = '\1';

/// The name of a file with what the energy pattern finds taken out.
QString withoutEnergy(const QString& path, const QRegularExpression& pattern) {
    const int start = path.lastIndexOf(QLatin1Char('/')) + 1;
    QString name = path.mid(start);
    const QRegularExpressionMatch match =
        pattern.isValid() ? pattern.match(path) : QRegularExpressionMatch();
    if (match.hasMatch() && match.capturedStart(0) >= start) {
        name.replace(match.capturedStart(0) - start, match.capturedLength(0), QLatin1Char(Energy));
    }
    const int suffix = name.lastIndexOf(QLatin1Char('.')) + 1;
    return name.left(suffix) + name.mid(suffix).toLower();
}

/// A name in which each run of digits is one 0, and these runs.
struct Shape {
    QString letters;
    QStringList runs;
    QVector<bool> isBehindLetter;  ///< of each run
};

Shape shapeOf(const QString& name) {
    Shape shape;
    bool inRun = false;
    for (const QChar c : name) {
        const bool isDigit = c >= QLatin1Char('0') && c <= QLatin1Char('9');
        if (isDigit && !inRun) {
            shape.isBehindLetter << (!shape.letters.isEmpty() && shape.letters.back().isLetter());
            shape.runs << QString();
            shape.letters += QLatin1Char('0');
        }
        if (isDigit) {
            shape.runs.last() += c;
        } else {
            shape.letters += c;
        }
        inRun = isDigit;
    }
    return shape;
}

/// Whether all of these loaded names share a number behind a letter that the other has not.
bool isOfAnotherNumber(const Shape& name, const QVector<Shape>& loaded) {
    for (int i = 0; loaded.size() > 1 && i < name.runs.size(); ++i) {
        const QString& first = loaded.first().runs.at(i);
        const bool isShared = std::all_of(loaded.begin(), loaded.end(), [&](const Shape& shape) {
            return shape.runs.at(i) == first;
        });
        if (name.isBehindLetter.at(i) && isShared && name.runs.at(i) != first) {
            return true;
        }
    }
    return false;
}

}  // namespace

NewFrames newFramesOf(const Stack& stack, const Stack& other) {
    const QRegularExpression pattern(stack.files().last().names.pattern);
    QStringList paths;
    QSet<QString> own;
    QVector<Shape> shapes;
    for (const Stack::File& file : stack.files()) {
        paths << file.path;
        own << withoutEnergy(file.path, pattern);
        shapes << shapeOf(withoutEnergy(file.path, pattern));
    }
    QSet<QString> others;
    QSet<QString> otherPaths;
    for (const Stack::File& file : other.files()) {
        others << withoutEnergy(file.path, pattern);
        otherPaths << file.path;
    }
    NewFrames found;
    for (const QString& file : listNewFiles(paths)) {
        const QString name = withoutEnergy(file, pattern);
        const Shape shape = shapeOf(name);
        QVector<Shape> alike;
        std::copy_if(shapes.begin(), shapes.end(), std::back_inserter(alike),
                     [&shape](const Shape& s) { return s.letters == shape.letters; });
        const bool isOfOther =
            otherPaths.contains(file) || (others.contains(name) && !own.contains(name));
        if (alike.isEmpty() || isOfOther) {
            continue;
        }
        const auto text = answerOf(file, [file = file] { return tiffDescription(file); });
        if (!text || OriginText::beginsIn(*text)) {
            continue;
        }
        (isOfAnotherNumber(shape, alike) ? found.otherwise : found.files) << file;
    }
    return found;
}
