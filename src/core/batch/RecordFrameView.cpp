// The lines of a record that say what frames show.

#include <QLocale>

#include "batch/RecordWriter.h"
#include "measurement/SettingWords.h"

namespace {

QString exact(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

}  // namespace

void RecordWriter::putFrameView(FrameView::Kind kind, const FrameView& view) {
    QStringList args{frameViewWord(kind)};
    if (kind == FrameView::Kind::Difference) {
        args << exact(view.from);
        if (view.to) {
            args << exact(*view.to);
        }
    }
    put(QStringLiteral("frame view"), QStringLiteral("set_frame_view"), args);
}

void RecordWriter::frameView(const Settings& s) {
    // A range is that of what is on display.
    const QPair<FrameView::Kind, const ViewRange*> ranges[] = {
        {FrameView::Kind::Absorption, &s.absorptionRange},
        {FrameView::Kind::Difference, &s.differenceRange}};
    for (const auto& range : ranges) {
        const bool canBeSaid = range.first != FrameView::Kind::Difference || s.frameView.from > 0.0;
        if (range.second->fixed && canBeSaid) {
            put(QStringLiteral("display"), QStringLiteral("select_disp_image"),
                {QStringLiteral("0")});
            putFrameView(range.first, s.frameView);
            line(QStringLiteral("set_view_range"),
                 {exact(range.second->low), exact(range.second->high)});
        }
    }
    putFrameView(s.frameView.kind, s.frameView);
}
