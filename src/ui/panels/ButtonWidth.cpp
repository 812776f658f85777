#include "panels/ButtonWidth.h"

#include <QAbstractButton>
#include <QFontMetrics>

void fitToText(QAbstractButton* button) {
    const QFontMetrics letters = button->fontMetrics();
    button->setFixedWidth(letters.horizontalAdvance(button->text()) + letters.height());
}
