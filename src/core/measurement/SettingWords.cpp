#include "measurement/SettingWords.h"

#include <algorithm>
#include <cmath>

#include "spectra/Background.h"

QString backgroundWord(int background) {
    const auto kind = static_cast<std::size_t>(background::kindOf(background));
    return QString::fromLatin1(background::rows()[kind].title);
}

int backgroundOfWord(const QString& word) {
    for (int kind = 0; kind < background::Count; ++kind) {
        if (word.compare(backgroundWord(kind), Qt::CaseInsensitive) == 0) {
            return kind;
        }
    }
    return -1;
}

namespace {

constexpr const char* FrameViewWords[] = {"counts", "absorption", "difference"};
constexpr const char* ConstraintWords[] = {"none", "nonnegative", "sum1", "both"};

bool isWord(const QString& text, const char* word) {
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

}  // namespace

QString constraintsWord(FitRule::Constraints constraints) {
    return QString::fromLatin1(ConstraintWords[static_cast<std::size_t>(constraints)]);
}

std::optional<FitRule::Constraints> constraintsOfWord(const QString& word) {
    int i = 0;
    for (const char* own : ConstraintWords) {
        if (isWord(word, own)) {
            return static_cast<FitRule::Constraints>(i);
        }
        ++i;
    }
    return std::nullopt;
}

std::optional<ResultId> resultOfName(const QString& name) {
    const auto kind =
        std::find_if(ResultKinds.begin(), ResultKinds.end(),
                     [&name](const ResultKind& each) { return isWord(name, each.name); });
    return kind != ResultKinds.end() ? std::optional<ResultId>(kind->id) : std::nullopt;
}

std::optional<double> maskOfWord(const QString& word) {
    if (isWord(word, "off")) {
        return 0.0;
    }
    const double factor = inField(word.toDouble());
    return std::isfinite(factor) && factor > 0.0 ? std::optional<double>(factor) : std::nullopt;
}
QString edgeWord(const EdgeChoice& choice) {
    switch (choice.kind) {
        case EdgeChoice::Kind::Each:
            return QStringLiteral("each");
        case EdgeChoice::Kind::Mean:
            return QStringLiteral("mean");
        case EdgeChoice::Kind::Energy:
            break;
    }
    return fieldText(choice.energy);
}

std::optional<EdgeChoice> edgeOfWord(const QString& word) {
    if (isWord(word, "each")) {
        return EdgeChoice{EdgeChoice::Kind::Each};
    }
    if (isWord(word, "mean")) {
        return EdgeChoice{EdgeChoice::Kind::Mean};
    }
    bool isNumber = false;
    const double energy = inField(word.toDouble(&isNumber));
    return isNumber && std::isfinite(energy) && energy > 0.0
               ? std::optional<EdgeChoice>({EdgeChoice::Kind::Energy, energy})
               : std::nullopt;
}

QString shapeWord(AreaShape shape) {
    switch (shape) {
        case AreaShape::Rectangle:
            return QStringLiteral("region");
        case AreaShape::Ellipse:
            return QStringLiteral("ellipse");
        case AreaShape::Polygon:
            return QStringLiteral("polygon");
    }
    return QString();
}

QStringList areaNumbers(const Area& area) {
    QStringList numbers;
    if (area.shape != AreaShape::Polygon) {
        for (const int corner : {area.x0, area.y0, area.x1, area.y1}) {
            numbers << QString::number(corner);
        }
    }
    for (const QPoint& vertex : area.vertices) {
        numbers << QString::number(vertex.x()) << QString::number(vertex.y());
    }
    return numbers;
}

QString scaleWord(FitRule::ReferenceScale scale) {
    return scale == FitRule::ReferenceScale::None ? QStringLiteral("none") : QStringLiteral("jump");
}

std::optional<FitRule::ReferenceScale> scaleOfWord(const QString& word) {
    for (const auto scale : {FitRule::ReferenceScale::Jump, FitRule::ReferenceScale::None}) {
        if (word.compare(scaleWord(scale), Qt::CaseInsensitive) == 0) {
            return scale;
        }
    }
    return std::nullopt;
}

QString frameViewWord(FrameView::Kind kind) {
    return QString::fromLatin1(FrameViewWords[static_cast<std::size_t>(kind)]);
}

std::optional<FrameView::Kind> frameViewOfWord(const QString& word) {
    int i = 0;
    for (const char* own : FrameViewWords) {
        if (isWord(word, own)) {
            return static_cast<FrameView::Kind>(i);
        }
        ++i;
    }
    return std::nullopt;
}

std::vector<ResultId> mapsOfName(const QString& name) {
    std::vector<ResultId> ids;
    for (const ResultKind& kind : ResultKinds) {
        if (isWord(name, "maps") || isWord(name, kind.name)) {
            ids.push_back(kind.id);
        }
    }
    return ids;
}

namespace {

constexpr const char* RangeWords[] = {"stated", "full", "robust"};

}  // namespace

QString rangeWord(MapRange::Kind kind) {
    return kind == MapRange::Kind::Fixed
               ? QStringLiteral("fixed")
               : QString::fromLatin1(RangeWords[static_cast<std::size_t>(kind)]);
}

std::optional<MapRange::Kind> rangeOfWord(const QString& word) {
    for (const auto kind : {MapRange::Kind::Stated, MapRange::Kind::Full, MapRange::Kind::Robust}) {
        if (word.compare(rangeWord(kind), Qt::CaseInsensitive) == 0) {
            return kind;
        }
    }
    return std::nullopt;
}

QStringList colorWords(const ViewColors& colors) {
    QStringList words{colors.scale != nullptr ? QString::fromLatin1(colors.scale->id)
                                              : QStringLiteral("stated")};
    if (colors.isReversed) {
        words << QStringLiteral("reversed");
    }
    return words;
}

std::optional<ViewColors> colorsOfWord(const QString& word) {
    if (isWord(word, "stated")) {
        return ViewColors();
    }
    const ColorScale* scale = colorScaleOf(word.toLower().toLatin1().constData());
    return scale != nullptr ? std::optional<ViewColors>({scale, false}) : std::nullopt;
}
