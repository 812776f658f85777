// Commands for the area: its shapes, and what is saved of it.

#include "base/Limits.h"
#include "batch/CommandRows.h"
#include "measurement/AreaSaving.h"
#include "measurement/AreaValues.h"
#include "measurement/SettingWords.h"

namespace {

bool isInteger(const QString& text) {
    bool ok = false;
    text.toInt(&ok);
    return ok;
}

void take(Action& a, const Area& area) {
    Measurement& m = a.measurement;
    a.outcome += m.judge(area);
    if (!a.outcome.failed()) {
        m.set(&Settings::area, area.clipped(m.imageSize()));
    }
}

/// Failed: one of the numbers lies far outside any image.
bool judgeNumbers(Action& a) {
    for (int i = 0; i < a.args.count(); ++i) {
        if (std::abs(a.args.real(i)) > Limits::LargestCoordinate) {
            a.fail(Batch::tr("%1 lies far outside any image").arg(a.args.text(i)));
            return false;
        }
    }
    return true;
}

void selectRegion(Action& a) {
    take(a, {a.args.integer(0), a.args.integer(1), a.args.integer(2), a.args.integer(3)});
}

void selectEllipse(Action& a) {
    if (judgeNumbers(a)) {
        take(a, Area::ellipse(a.args.integer(0), a.args.integer(1), a.args.integer(2),
                              a.args.integer(3)));
    }
}

void selectPolygon(Action& a) {
    if (a.args.count() % 2 != 0) {
        a.fail(Batch::tr("too few arguments: a vertex has two numbers"));
        return;
    }
    QVector<QPoint> vertices;
    for (int i = 0; i + 1 < a.args.count(); i += 2) {
        const QString bad = !isInteger(a.args.text(i)) ? a.args.text(i) : a.args.text(i + 1);
        if (!isInteger(bad)) {
            a.fail(Batch::tr("'%1' is not an integer").arg(bad));
            return;
        }
        vertices.append({a.args.integer(i), a.args.integer(i + 1)});
    }
    if (judgeNumbers(a)) {
        take(a, Area::polygon(vertices));
    }
}

void selectThreshold(Action& a) {
    const int reference = a.args.count() > 3 ? a.args.integer(3) : 0;
    Area area;
    a.outcome += thresholdArea(a.measurement, *resultOfName(a.args.text(0)), reference,
                               a.args.real(1), a.args.real(2), &area);
    if (!a.outcome.failed()) {
        take(a, area);
    }
}

}  // namespace

void addAreaCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {13,
         "select_region",
         {K::Integer, K::Integer, K::Integer, K::Integer},
         4,
         false,
         Work::None,
         selectRegion},
        {89,
         "select_ellipse",
         {K::Integer, K::Integer, K::Integer, K::Integer},
         4,
         false,
         Work::None,
         selectEllipse},
        {90,
         "select_polygon",
         {K::Integer, K::Integer, K::Integer, K::Integer, K::Integer, K::Integer},
         6,
         true,
         Work::None,
         selectPolygon},
        {91,
         "select_threshold",
         {K::MapName, K::Real, K::Real, K::Integer},
         3,
         false,
         Work::None,
         selectThreshold},
        {92,
         "save_area_spectrum",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveAreaSpectrum(a.measurement, a.args.text(0)); }},
        {93,
         "save_statistics",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveStatistics(a.measurement, a.args.text(0)); }},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
