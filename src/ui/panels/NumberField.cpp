#include "panels/NumberField.h"

#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <cmath>

#include "measurement/Settings.h"

double numberIn(const QLineEdit* field) {
    const double value = field->text().toDouble();
    return std::isfinite(value) ? value : 0.0;
}

namespace {

/// Energies of frames may have more digits than fields have.
QString textOf(double value) {
    return inField(value) == value ? fieldText(value)
                                   : QString::number(value, 'g', QLocale::FloatingPointShortest);
}

}  // namespace

void showFromStart(QLineEdit* field, const QString& text) {
    field->setText(text);
    field->setCursorPosition(0);
}

void showInRoom(QLineEdit* field, double value) {
    const QFontMetrics letters = field->fontMetrics();
    const int room = field->width() - letters.horizontalAdvance(QLatin1Char('M'));
    QString text = fieldText(value);
    for (int digits = 5; digits > 0 && letters.horizontalAdvance(text) > room; --digits) {
        text = QString::number(value, 'g', digits);
    }
    if (letters.horizontalAdvance(text) > room) {
        text = QString::number(value, 'e', 0);
    }
    showFromStart(field, text);
}

void showNumber(QLineEdit* field, double value) {
    const double shown = numberIn(field);
    if (!field->isModified() && shown != value && inField(shown) != value) {
        const QSignalBlocker blocked(field);
        showFromStart(field, textOf(value));
    }
}

void noteTaken(QLineEdit* field) {
    field->setModified(false);
}

void finishNumber(QLineEdit* field, double value) {
    bool isNumber = false;
    if (field->text().toDouble(&isNumber) != value || !isNumber) {
        const QSignalBlocker blocked(field);
        field->setText(textOf(value));
    }
    noteTaken(field);
    if (!field->hasFocus()) {
        field->setCursorPosition(0);
    }
}
