#include "window/ImagePane.h"

#include <QButtonGroup>
#include <QIntValidator>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <cmath>

#include "base/Numbers.h"
#include "display/ColorBar.h"
#include "display/CrossSection.h"
#include "display/ImageView.h"
#include "drawing/FramePicture.h"
#include "drawing/Profiles.h"
#include "measurement/CompositeDisplay.h"
#include "measurement/Display.h"
#include "measurement/MapDisplay.h"
#include "ui_Body.h"
#include "window/CursorNumbers.h"

namespace {

/// While a stack loads, what is shown follows at this pace: a frame takes less time to read than to
/// show.
constexpr int RefreshMs = 40;

QString valueText(double value) {
    return std::isnan(value) ? ImagePane::tr("no value") : QString::number(value, 'g', 6);
}

/// Puts the view into one of the form's frames.
CrossSection* fill(QFrame* frame, Qt::Orientation orientation) {
    auto* view = new CrossSection(orientation, frame);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    return view;
}

}  // namespace

ImagePane::ImagePane(Measurement& measurement, Ui::Body& ui, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_ui(ui), m_choice(new QButtonGroup(this)) {
    m_choice->addButton(ui.ShowData, static_cast<int>(Shown::I1));
    m_choice->addButton(ui.ShowI0, static_cast<int>(Shown::I0));
    m_choice->addButton(ui.ShowShiftMap, static_cast<int>(Shown::Map));
    m_choice->addButton(ui.ShowResAnalysis, static_cast<int>(Shown::Result));
    m_hCross = fill(ui.HCross, Qt::Horizontal);
    m_vCross = fill(ui.VCross, Qt::Vertical);
    m_hCross->follow(ui.dispA);
    m_vCross->follow(ui.dispA);
    m_numbers = std::make_unique<CursorNumbers>(ui.positionLayout, ui.Value);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ImagePane::refresh);
    connectControls();
    connectBins();
    connect(&measurement, &Measurement::changed, this, &ImagePane::changed);
    connect(&measurement.frameImages(), &FrameImages::ready, this, &ImagePane::refresh);
    showSettings();
    refresh();
}

ImagePane::~ImagePane() = default;

void ImagePane::connectControls() {
    for (const Shown shown : {Shown::I1, Shown::I0, Shown::Map, Shown::Result}) {
        connect(m_choice->button(static_cast<int>(shown)), &QAbstractButton::toggled, this,
                [this, shown](bool on) {
                    if (on && !m_showing) {
                        m_measurement.set(&Settings::shown, shown);
                    }
                });
    }
    connect(m_ui.ResetScale, &QPushButton::clicked, m_ui.dispA, &ImageView::resetImageViewWindow);
    connect(m_ui.dispA, &ImageView::selectionChanged, this, [this] {
        if (!m_showing) {
            m_measurement.set(&Settings::area, m_ui.dispA->selectedArea());
        }
    });
    connect(m_ui.CBar, &ColorBar::percentilesAsked, this,
            [this] { emit said(fixPercentiles(m_measurement)); });
    connect(m_ui.CBar, &ColorBar::rangeChosen, this, [this](const MapRange& range) {
        changeView([&range](MapView& view) { view.range = range; });
    });
    connect(m_ui.CBar, &ColorBar::colorsChosen, this, [this](const ViewColors& colors) {
        changeView([&colors](MapView& view) { view.colors = colors; });
    });
}

/// That of the kind of map on display; of frames, whose colours alone are a view's.
void ImagePane::changeView(const std::function<void(MapView&)>& change) {
    MapViews views = m_measurement.settings().views;
    if (const Result* result = m_measurement.shownResult()) {
        change(views[result->id]);
    } else {
        MapView ofFrames;
        change(ofFrames);
        views.frames = ofFrames.colors;
    }
    m_measurement.set(&Settings::views, views);
}

void ImagePane::connectBins() {
    const QPair<QLineEdit*, int Settings::*> fields[] = {{m_ui.HWidth, &Settings::halfWidth},
                                                         {m_ui.VWidth, &Settings::halfHeight}};
    for (const auto& pair : fields) {
        QLineEdit* field = pair.first;
        int Settings::*const setting = pair.second;
        field->setValidator(new QIntValidator(field));
        connect(field, &QLineEdit::textChanged, this, [this, field, setting] {
            if (!m_showing) {
                m_measurement.set(setting, field->text().toInt());
            }
        });
    }
}

void ImagePane::changed(Measurement::Changes what) {
    if (what & Measurement::Setting) {
        showSettings();
    }
    if (what & Measurement::Frames) {
        showArea();
    }
    if (what & (Measurement::Frames | Measurement::Display | Measurement::Results)) {
        if (isLoading()) {
            refreshSoon();
        } else {
            refresh();
        }
    } else if (what & Measurement::Setting) {
        updateValueAndCrossSections();
    }
    if (what & (Measurement::Changes(Measurement::Setting) | Measurement::Dark |
                Measurement::Standard | Measurement::Map | Measurement::References)) {
        showMark();
    }
}

/// What keeps the result on display from being one of now, over its picture.
void ImagePane::showMark() {
    const Result* result = m_measurement.shownResult();
    m_ui.dispA->setBand(result != nullptr && result->image.hasData()
                            ? stateText(m_measurement, *result)
                            : QString());
}

bool ImagePane::isLoading() const {
    return m_measurement.isAtWork(Work::LoadI1) || m_measurement.isAtWork(Work::LoadI0);
}

void ImagePane::showSettings() {
    const Settings& settings = m_measurement.settings();
    m_showing = true;
    m_choice->button(static_cast<int>(settings.shown))->setChecked(true);
    const auto show = [](QLineEdit* field, int value) {
        if (field->text().toInt() != value || field->text().isEmpty()) {
            field->setText(QString::number(value));
        }
    };
    if (!m_ui.HWidth->hasFocus() || m_ui.HWidth->text().toInt() != settings.halfWidth) {
        show(m_ui.HWidth, settings.halfWidth);
    }
    if (!m_ui.VWidth->hasFocus() || m_ui.VWidth->text().toInt() != settings.halfHeight) {
        show(m_ui.VWidth, settings.halfHeight);
    }
    m_ui.dispA->setBinBox(settings.halfWidth, settings.halfHeight);
    m_showing = false;
    showArea();
}

void ImagePane::showArea() {
    const QSize size = m_measurement.imageSize();
    const Area& area = m_measurement.settings().area;
    m_showing = true;
    m_ui.dispA->setImageSize(size.width(), size.height());
    m_ui.dispA->select(area);
    m_showing = false;
}

QImage ImagePane::framePictureMade() {
    const FrameImage* image = m_measurement.frameImage(Measurement::Wait::Blink);
    const auto serial = image != nullptr ? static_cast<qint64>(image->serial) : 0;
    if (image != nullptr && (m_painted.isNull() || m_paintedOf != serial)) {
        m_paintedOf = serial;
        m_painted = pictureOf(*image, m_measurement);
    }
    return image != nullptr ? m_painted : QImage();
}

QImage ImagePane::markedPicture() {
    if (m_measurement.frameKind() != FrameView::Kind::Counts) {
        return framePictureMade();
    }
    const Settings& settings = m_measurement.settings();
    const bool isFrame = shownFrame(m_measurement) != nullptr;
    const Result* result = m_measurement.shownResult();
    const bool isComposite = showsComposite(m_measurement);
    const bool hasOwnPicture = isFrame
                                   ? !settings.viewRange.fixed && settings.views.frames.isStated()
                                   : result == nullptr || viewOf(m_measurement, *result).isStated();
    if (isComposite || !hasOwnPicture) {
        if (m_painted.isNull()) {
            m_painted = isComposite
                            ? compositePicture(compositeOf(m_measurement, settings.composite))
                            : shownPicture(m_measurement);
        }
        return m_painted;
    }
    const QImage picture = shownPicture(m_measurement);
    if (picture.isNull() || result == nullptr || result->image.showsGaps()) {
        return picture;
    }
    // What had to be made is kept, for it is painted anew with every move of the mouse.
    if (m_paintedOf != picture.cacheKey()) {
        m_paintedOf = picture.cacheKey();
        const Analyzed2DRes& image = result->image;
        m_painted = withGapsMarked(picture, image.visibleValues().constData(), image.grid().width,
                                   image.grid().height);
        if (m_painted.cacheKey() == picture.cacheKey()) {
            m_painted = QImage();  // no gaps; the memory of the picture is the result's
        }
    }
    return m_painted.isNull() ? picture : m_painted;
}

void ImagePane::draw(QPainter* painter) {
    const QImage picture = markedPicture();
    if (!picture.isNull()) {
        m_ui.dispA->paintImage(painter, picture);
    }
}

void ImagePane::newBar() {
    if (!m_showing) {
        m_measurement.set(m_measurement.frameRange(),
                          m_ui.CBar->isAuto()
                              ? ViewRange()
                              : ViewRange{true, m_ui.CBar->rangeMin(), m_ui.CBar->rangeMax()});
    }
}

void ImagePane::showBar() {
    m_showing = true;
    const Result* result = m_measurement.shownResult();
    if (const TiffData* frame = shownFrame(m_measurement)) {
        const ViewRange& range = m_measurement.settings().*m_measurement.frameRange();
        const FrameImage* image = m_measurement.frameImage(Measurement::Wait::Blink);
        m_ui.CBar->showFrames(m_measurement.settings().views.frames);
        if (image != nullptr) {
            const auto [low, high] = colorRange(image->low, image->high, m_measurement);
            const auto [least, most] =
                colorRange(image->pixels.min, image->pixels.max, m_measurement);
            m_ui.CBar->setDataRange(low, high);
            m_ui.CBar->setWholeRange(least, most);
        } else {
            m_ui.CBar->setDataRange(frame->min, frame->max);
        }
        if (!range.fixed) {
            m_ui.CBar->setAuto(true);
        } else if (m_ui.CBar->isAuto() || m_ui.CBar->rangeMin() != range.low ||
                   m_ui.CBar->rangeMax() != range.high) {
            m_ui.CBar->fix(range.low, range.high);
        }
    } else if (showsComposite(m_measurement)) {
        m_ui.CBar->showLegend(namesOf(m_measurement, m_measurement.settings().composite));
    } else if (result != nullptr) {
        m_ui.CBar->showMap(viewOf(m_measurement, *result), coloringOf(m_measurement, *result),
                           result->image.isFixedScale());
    }
    m_showing = false;
}

void ImagePane::refreshSoon() {
    if (!m_refreshed.isValid() || m_refreshed.hasExpired(RefreshMs)) {
        refresh();
    } else if (!m_timer.isActive()) {
        m_timer.start(RefreshMs);
    }
}

void ImagePane::refresh() {
    m_timer.stop();
    m_painted = QImage();
    m_paintedOf = 0;
    const Shown shown = m_measurement.settings().shown;
    m_ui.dispA->setResultDisplayed(shown == Shown::Map || shown == Shown::Result);
    showBar();
    showMark();
    m_ui.dispA->setCaption(shownCaption(m_measurement));
    updateValueAndCrossSections();
    m_ui.dispA->QWidget::update();
    m_refreshed.start();
}

/// The fractions of a composite at a pixel in per cent.
QString ImagePane::sharesText(int x, int y) const {
    QStringList texts;
    for (const int n : m_measurement.settings().composite.references) {
        if (const Result* share = m_measurement.find(ResultId::Ratio, n)) {
            const double value = share->image.visibleValueAt(x, y);
            if (std::isnan(value)) {
                return valueText(value);
            }
            texts << QString::number(100.0 * value, 'f', 0);
        }
    }
    return texts.join(QLatin1Char(':')) + QStringLiteral(" %");
}

/// The map that cross sections and value are of: of a composite the first fraction.
const Result* ImagePane::mapInSections() const {
    if (showsComposite(m_measurement)) {
        for (const int n : m_measurement.settings().composite.references) {
            if (const Result* share = m_measurement.find(ResultId::Ratio, n)) {
                return share;
            }
        }
    }
    return m_measurement.shownResult();
}

/// The range in use; none where it is that of all values, which the sections find themselves.
QPair<double, double> ImagePane::sectionRange() const {
    const Settings& settings = m_measurement.settings();
    if (showsComposite(m_measurement)) {
        const CompositeMaps maps = compositeOf(m_measurement, settings.composite);
        return {maps.low, maps.high};
    }
    const Result* result = m_measurement.shownResult();
    bool isFixed = (settings.*m_measurement.frameRange()).fixed;
    if (settings.shown == Shown::Map || settings.shown == Shown::Result) {
        isFixed = result != nullptr &&
                  (result->image.isFixedScale() ||
                   viewOf(m_measurement, *result).range.kind != MapRange::Kind::Stated);
    }
    return isFixed ? qMakePair(m_ui.CBar->rangeMin(), m_ui.CBar->rangeMax()) : qMakePair(0.0, 0.0);
}

void ImagePane::updateValueAndCrossSections() {
    const QPointF position = m_ui.dispA->realPosition();
    const int x = toPixel(position.x());
    const int y = toPixel(position.y());
    int width = 0;
    int height = 0;
    PixelValue valueAt;
    const TiffData* frame = shownFrame(m_measurement);
    const Result* result = mapInSections();
    const FrameImage* image =
        frame != nullptr ? m_measurement.frameImage(Measurement::Wait::Blink) : nullptr;
    if (image != nullptr) {
        width = image->pixels.width;
        height = image->pixels.height;
        valueAt = [image](int column, int row) { return image->pixels.at(column, row); };
    } else if (frame != nullptr) {
        width = static_cast<int>(frame->width);
        height = static_cast<int>(frame->rows.size());
        valueAt = [frame](int column, int row) {
            return static_cast<double>(frame->rows[static_cast<std::size_t>(row)][column]);
        };
    } else if (result != nullptr) {
        width = result->image.grid().width;
        height = result->image.grid().height;
        valueAt = [result](int column, int row) {
            return result->image.visibleValueAt(column, row);
        };
    }
    const bool inside = x >= 0 && y >= 0 && x < width && y < height;
    const QString nothing = width > 0 ? QString() : QStringLiteral("0.0");
    m_ui.Value->setText(inside ? showsComposite(m_measurement) ? sharesText(x, y)
                                                               : valueText(valueAt(x, y))
                               : nothing);
    m_ui.Value->setCursorPosition(0);
    const bool isOfMap = inside && !showsComposite(m_measurement);
    m_numbers->show(m_measurement, isOfMap ? m_measurement.shownResult() : nullptr, x, y);
    const Settings& settings = m_measurement.settings();
    m_hCross->setProfile(rowProfile(width, height, valueAt, y, settings.halfHeight), 0);
    m_vCross->setProfile(columnProfile(width, height, valueAt, x, settings.halfWidth), 0);
    const auto [low, high] = sectionRange();
    m_hCross->setValueRange(low, high);
    m_vCross->setValueRange(low, high);
    m_hCross->setMarker(position.x());
    m_vCross->setMarker(position.y());
}
