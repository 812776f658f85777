// Commands for bins, position and what is on display.

#include "batch/CommandRows.h"
#include "measurement/Display.h"
#include "measurement/SettingWords.h"
#include "spectra/Units.h"

namespace {

void movePosition(Action& a) {
    const QPoint at(a.args.integer(0), a.args.integer(1));
    const QSize size = a.measurement.imageSize();
    if (size.isEmpty()) {
        a.fail(Batch::tr("no images are loaded"));
        return;
    }
    // Also to where there is no spectrum: the one before must not pass for it.
    a.measurement.setPosition(at.x(), at.y());
    if (!QRect(QPoint(0, 0), size).contains(at)) {
        a.fail(Batch::tr("the image is %1 x %2 pixels: there is no position %3, %4")
                   .arg(size.width())
                   .arg(size.height())
                   .arg(at.x())
                   .arg(at.y()));
    }
}

void selectDisplay(Action& a) {
    const int n = a.args.integer(0);
    if (n < static_cast<int>(Shown::I1) || n > static_cast<int>(Shown::Result)) {
        a.fail(Batch::tr("%1 is out of range %2 to %3").arg(n).arg(0).arg(3));
        return;
    }
    a.measurement.set(&Settings::shown, static_cast<Shown>(n));
}

void showFrame(Action& a) {
    Stack& stack = a.measurement.shownStack();
    const int n = a.args.integer(0);
    if (n < 0 || n >= stack.size()) {
        a.fail(Batch::tr("there is no frame %1").arg(n));
        return;
    }
    a.measurement.setFrame(stack.id(), n);
}

void setPlotAxes(Action& a) {
    const int ordinate = a.args.integer(0);
    const QString unit = a.args.text(1);
    const int abscissa = unitOfName(unit);
    if (ordinate < SpectrumPlot::MuT || ordinate > SpectrumPlot::PostBasedBySpan) {
        a.fail(Batch::tr("there is no ordinate %1").arg(a.args.text(0)));
    } else if (abscissa < 0) {
        a.fail(Batch::tr("there is no unit %1").arg(unit));
    } else {
        a.measurement.set(&Settings::plotOrdinate, ordinate);
        a.measurement.set(&Settings::plotAbscissa, abscissa);
    }
}

/// Energies behind a difference; those in force without.
void setFrameView(Action& a) {
    const std::optional<FrameView::Kind> kind = frameViewOfWord(a.args.text(0));
    if (!kind) {
        a.fail(Batch::tr("there is no view of frames '%1'").arg(a.args.text(0)));
        return;
    }
    if (*kind != FrameView::Kind::Difference && a.args.count() > 1) {
        a.fail(Batch::tr("only a difference has energies"));
        return;
    }
    FrameView view = a.measurement.settings().frameView;
    view.kind = *kind;
    if (a.args.count() > 1) {
        view.from = a.args.real(1);
        view.to = a.args.count() > 2 ? std::optional<double>(a.args.real(2)) : std::nullopt;
    }
    if (*kind == FrameView::Kind::Difference && !(view.from > 0.0)) {
        a.fail(Batch::tr("too few arguments: which energy is taken off?"));
        return;
    }
    a.outcome += a.measurement.judge(view);
    if (!a.outcome.failed()) {
        a.measurement.set(&Settings::frameView, view);
    }
}

bool areEnds(Action& a, int given, double low, double high) {
    if (given < 2) {
        a.fail(Batch::tr("too few arguments: a range has two ends"));
    } else if (high <= low) {
        a.fail(Batch::tr("the upper end of a range must lie above the lower one"));
    }
    return !a.outcome.failed();
}

/// Arguments from the i-th on are too many.
void leaveOut(Action& a, int i) {
    if (a.args.count() > i) {
        a.outcome.warnings << Batch::tr("'%1' is ignored: too many arguments")
                                  .arg(a.args.from(i).join(QLatin1Char(' ')));
    }
}

void setRangeOfMaps(Action& a, const std::vector<ResultId>& maps) {
    MapRange range;
    if (const std::optional<MapRange::Kind> kind = rangeOfWord(a.args.text(1))) {
        range.kind = *kind;
        leaveOut(a, 2);
    } else {
        range = {MapRange::Kind::Fixed, a.args.real(1), a.args.real(2)};
        if (!areEnds(a, a.args.count() - 1, range.low, range.high)) {
            return;
        }
    }
    MapViews views = a.measurement.settings().views;
    for (const ResultId id : maps) {
        views[id].range = range;
    }
    a.measurement.set(&Settings::views, views);
}

/// Two numbers fix the range of frames, as they are shown; none leaves each frame its own.
void setViewRange(Action& a) {
    const std::vector<ResultId> maps = mapsOfName(a.args.text(0));
    ViewRange Settings::*const ofFrames = a.measurement.frameRange();
    if (a.args.count() == 0) {
        a.measurement.set(ofFrames, ViewRange());
    } else if (!maps.empty()) {
        setRangeOfMaps(a, maps);
    } else if (rangeOfWord(a.args.text(1))) {
        a.fail(Batch::tr("'%1' is not a number").arg(a.args.text(1)));
    } else if (areEnds(a, a.args.count(), a.args.real(0), a.args.real(1))) {
        a.measurement.set(ofFrames, ViewRange{true, a.args.real(0), a.args.real(1)});
        leaveOut(a, 2);
    }
}

void setColorMap(Action& a) {
    ViewColors colors = *colorsOfWord(a.args.text(1));
    colors.isReversed = a.args.count() > 2;
    MapViews views = a.measurement.settings().views;
    const std::vector<ResultId> maps = mapsOfName(a.args.text(0));
    if (maps.empty()) {
        views.frames = colors;
    }
    for (const ResultId id : maps) {
        views[id].colors = colors;
    }
    a.measurement.set(&Settings::views, views);
}

}  // namespace

void addViewCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {6,
         "set_band_w",
         {K::Integer},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::halfWidth, a.args.integer(0)); }},
        {7,
         "set_band_h",
         {K::Integer},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::halfHeight, a.args.integer(0)); }},
        {8, "select_disp_image", {K::Integer}, 1, false, Work::None, selectDisplay},
        {12, "move_position", {K::Integer, K::Integer}, 2, false, Work::None, movePosition},
        {59,
         "show_processed",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += a.measurement.showProcessed(a.args.flag(0)); }},
        {60, "show_frame", {K::Integer}, 1, false, Work::None, showFrame},
        {61,
         "set_spectra_corrected",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::correctedSpectra, a.args.flag(0)); }},
        {66,
         "set_view_range",
         {K::RangeOf, K::RangeEnd, K::Real},
         0,
         false,
         Work::None,
         setViewRange},
        {94, "set_frame_view", {K::Text, K::Real, K::Real}, 1, false, Work::None, setFrameView},
        {87,
         "set_colour_map",
         {K::Viewed, K::ScaleName, K::Reversed},
         2,
         false,
         Work::None,
         setColorMap},
        {71, "set_plot_axes", {K::Integer, K::Text}, 2, false, Work::None, setPlotAxes},
        {67,
         "set_percentiles",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.outcome += fixPercentiles(a.measurement); }},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
