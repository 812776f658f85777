#include "display/PathFields.h"

#include <QAbstractItemView>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QStylePainter>

void PathField::paintEvent(QPaintEvent* event) {
    QStyleOptionFrame option;
    initStyleOption(&option);
    constexpr int Margin = 3;  // where the text of a field begins
    const QRect room = style()
                           ->subElementRect(QStyle::SE_LineEditContents, &option, this)
                           .adjusted(Margin, 0, -Margin, 0);
    if (!isReadOnly() || hasSelectedText() ||
        fontMetrics().horizontalAdvance(text()) <= room.width()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    painter.drawPrimitive(QStyle::PE_PanelLineEdit, option);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideLeft, room.width()));
}

PathBox::PathBox(QWidget* parent) : QComboBox(parent) {
    view()->setTextElideMode(Qt::ElideLeft);
}

void PathBox::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    constexpr int Margins = 4;
    const QRect room =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideLeft, room.width() - Margins);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
