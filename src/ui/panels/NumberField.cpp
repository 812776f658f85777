#include "panels/NumberField.h"

#include <QLineEdit>
#include <QSignalBlocker>
#include <cmath>

#include "measurement/Settings.h"

double numberIn(const QLineEdit* field) {
    const double value = field->text().toDouble();
    return std::isfinite(value) ? value : 0.0;
}

void showNumber(QLineEdit* field, double value) {
    if (!field->isModified() && inField(numberIn(field)) != value) {
        const QSignalBlocker blocked(field);
        field->setText(fieldText(value));
    }
}

void noteTaken(QLineEdit* field) {
    field->setModified(false);
}

void finishNumber(QLineEdit* field, double value) {
    bool isNumber = false;
    if (field->text().toDouble(&isNumber) != value || !isNumber) {
        const QSignalBlocker blocked(field);
        field->setText(fieldText(value));
    }
    noteTaken(field);
}
