// How maps and frames are looked at, as batch lines.

#include <QLocale>
#include <algorithm>

#include "batch/RecordWriter.h"
#include "measurement/SettingWords.h"

namespace {

QString exact(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QStringList rangeArgs(const MapRange& range) {
    return range.kind == MapRange::Kind::Fixed ? QStringList{exact(range.low), exact(range.high)}
                                               : QStringList{rangeWord(range.kind)};
}

}  // namespace

void RecordWriter::viewRange(const ViewRange& range) {
    put(QStringLiteral("view range"), QStringLiteral("set_view_range"),
        range.fixed ? QStringList{exact(range.low), exact(range.high)} : QStringList());
}

/// Says it once of all maps where it is the same for all of them and new for any.
void RecordWriter::viewsAre(const char* key, const char* command,
                            const std::vector<QStringList>& args) {
    const auto keyOf = [key](const ResultKind& kind) {
        return QString::fromLatin1(key) + QString::fromLatin1(kind.name);
    };
    const bool isSame = std::all_of(args.begin(), args.end(),
                                    [&](const QStringList& each) { return each == args[0]; });
    bool isSaid = false;
    for (const ResultKind& kind : ResultKinds) {
        const QStringList& own = args[static_cast<std::size_t>(kind.id)];
        const QString value = own.join(QLatin1Char(' '));
        if (!isInForce(keyOf(kind), value) && !isSaid) {
            line(QString::fromLatin1(command),
                 QStringList{isSame ? QStringLiteral("maps") : QString::fromLatin1(kind.name)} +
                     own);
            isSaid = isSame;
        }
        assume(keyOf(kind), value);
    }
}

void RecordWriter::views(const MapViews& views) {
    std::vector<QStringList> ranges;
    std::vector<QStringList> colors;
    for (const MapView& view : views.of) {
        ranges.push_back(rangeArgs(view.range));
        colors.push_back(colorWords(view.colors));
    }
    viewsAre("range ", "set_view_range", ranges);
    viewsAre("colours ", "set_colour_map", colors);
    put(QStringLiteral("frame colours"), QStringLiteral("set_colour_map"),
        QStringList{QStringLiteral("frames")} + colorWords(views.frames));
}

void RecordWriter::view(ResultId id, const MapViews& views) {
    MapViews only;
    only[id] = views[id];
    this->views(only);
}
