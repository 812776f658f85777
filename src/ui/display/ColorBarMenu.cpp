// The context menu of the colour bar: ranges and colour maps.

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QMenu>
#include <QPainter>

#include "display/ColorBar.h"

namespace {

/// The colours of a map from left to right.
QIcon iconOf(const ColorScale& colors) {
    QPixmap pixmap(48, 14);
    QPainter painter(&pixmap);
    for (int x = 0; x < pixmap.width(); ++x) {
        const unsigned char* c = colors.at(x / (pixmap.width() - 1.0));
        painter.fillRect(x, 0, 1, pixmap.height(), QColor(c[0], c[1], c[2]));
    }
    painter.end();
    return QIcon(pixmap);
}

QAction* addChoice(QMenu* menu, QActionGroup* group, const QString& text, bool isChosen) {
    QAction* action = group->addAction(menu->addAction(text));
    action->setCheckable(true);
    action->setChecked(isChosen);
    return action;
}

}  // namespace

void ColorBar::addRanges(QMenu* menu) {
    if (m_of == Of::Frames) {
        menu->addAction(tr("Percentile 1-99"), this, &ColorBar::percentilesAsked);
        menu->addAction(tr("Whole range"), this, [this] { fix(m_wholeMin, m_wholeMax); });
        QAction* own = menu->addAction(tr("Each frame's own"));
        own->setCheckable(true);
        own->setChecked(m_auto);
        connect(own, &QAction::toggled, this, &ColorBar::setAuto);
        return;
    }
    using Kind = MapRange::Kind;
    const QPair<Kind, QString> ranges[] = {{Kind::Robust, tr("Percentiles 1-99")},
                                           {Kind::Full, tr("Full range")},
                                           {Kind::Fixed, tr("Fixed at these limits")},
                                           {Kind::Stated, tr("As batches draw it")}};
    auto* group = new QActionGroup(menu);
    for (const auto& range : ranges) {
        const Kind kind = range.first;
        QAction* action = addChoice(menu, group, range.second, m_view.range.kind == kind);
        action->setObjectName(QStringLiteral("range%1").arg(static_cast<int>(kind)));
        connect(action, &QAction::triggered, this, [this, kind] {
            if (kind == Kind::Fixed) {
                fix(rangeMin(), rangeMax());
            } else {
                choose(MapRange{kind, 0.0, 1.0});
            }
        });
    }
}

void ColorBar::addColors(QMenu* menu) {
    const ViewColors chosen = chosenColors();
    const ColorScale* const stated = m_of == Of::Map ? &resultColors() : &frameColors();
    auto* group = new QActionGroup(menu);
    for (const ColorScale& scale : colorScales()) {
        const bool isChosen = &scale == (chosen.scale != nullptr ? chosen.scale : stated);
        QAction* action = addChoice(
            menu, group, QCoreApplication::translate("ColorScale", scale.title), isChosen);
        action->setObjectName(QString::fromLatin1(scale.id));
        action->setIcon(iconOf(chosen.isReversed ? reversed(scale) : scale));
        const ColorScale* const taken = &scale != stated ? &scale : nullptr;
        connect(action, &QAction::triggered, this, [this, chosen, taken] {
            choose(ViewColors{taken, chosen.isReversed});
        });
    }
    QAction* turned = menu->addAction(tr("Reversed"));
    turned->setObjectName(QStringLiteral("reversed"));
    turned->setCheckable(true);
    turned->setChecked(chosen.isReversed);
    connect(turned, &QAction::triggered, this, [this, chosen](bool on) {
        choose(ViewColors{chosen.scale, on});
    });
}

void ColorBar::contextMenuEvent(QContextMenuEvent* event) {
    if (isOfComposite()) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addRanges(menu);
    menu->addSeparator();
    addColors(menu);
    menu->popup(event->globalPos());
}
