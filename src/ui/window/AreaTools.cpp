#include "window/AreaTools.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

#include "display/ImageView.h"

namespace {

constexpr int IconSize = 16;

/// In the colour of the texts, sharp on screens of any scale.
template <typename Draw>
QIcon icon(const QWidget& of, Draw draw) {
    constexpr int Scale = 4;
    QPixmap picture(Scale * IconSize, Scale * IconSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(Scale, Scale);
    painter.setPen(QPen(of.palette().color(QPalette::ButtonText), 1.5));
    draw(painter);
    return QIcon(picture);
}

}  // namespace

AreaTools::AreaTools(ImageView* view, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("AreaTools"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* shapes = new QButtonGroup(this);
    const auto shape = [&](AreaShape drawn, QToolButton* press) {
        press->setCheckable(true);
        press->setChecked(view->chosenShape() == drawn);
        shapes->addButton(press);
        connect(press, &QToolButton::clicked, view, [view, drawn] {
            view->chooseShape(drawn);
            view->setFocus();
        });
    };
    shape(AreaShape::Rectangle,
          add("DrawRectangle", icon(*this, [](QPainter& p) { p.drawRect(QRectF(2, 3.5, 12, 9)); }),
              tr("Rectangle"),
              tr("Rectangle: drag in the image to select an area; a right click or Esc removes "
                 "it")));
    shape(AreaShape::Ellipse,
          add("DrawEllipse", icon(*this, [](QPainter& p) { p.drawEllipse(QRectF(2, 3.5, 12, 9)); }),
              tr("Ellipse"), tr("Ellipse: drag the rectangle around it")));
    shape(AreaShape::Polygon,
          add("DrawPolygon",
              icon(*this,
                   [](QPainter& p) {
                       p.drawPolygon(QPolygonF({{2, 12}, {4, 3}, {10, 6}, {14, 4}, {12, 13}}));
                   }),
              tr("Polygon"),
              tr("Polygon: click its corners; a double click or Enter closes it, Backspace takes "
                 "the last corner back")));
    auto* statistics =
        add("ShowStatistics",
            icon(*this,
                 [](QPainter& p) {
                     for (const QRectF& bar : {QRectF(2, 9, 2, 5), QRectF(6, 3, 2, 11),
                                               QRectF(10, 6, 2, 8), QRectF(14, 11, 1, 3)}) {
                         p.fillRect(bar, p.pen().color());
                     }
                 }),
            tr("Statistics"),
            tr("Statistics and mean spectrum of the area, and an area by the values of a map"));
    connect(statistics, &QToolButton::clicked, this, &AreaTools::statisticsAsked);
    layout->addStretch(1);
}

QToolButton* AreaTools::add(const char* name, const QIcon& icon, const QString& text,
                            const QString& tip) {
    auto* press = new QToolButton;
    press->setObjectName(QString::fromLatin1(name));
    press->setIcon(icon);
    press->setIconSize({IconSize, IconSize});
    press->setAccessibleName(text);
    press->setToolTip(tip);
    press->setFocusPolicy(Qt::TabFocus);
    layout()->addWidget(press);
    return press;
}
