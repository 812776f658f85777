#include "window/Fields.h"

#include <QLineEdit>
#include <QVariant>
#include <cmath>

double numberIn(QLineEdit* field) {
    constexpr char LastNumber[] = "lastNumber";
    bool ok = false;
    const double value = field->text().toDouble(&ok);
    if (ok && std::isfinite(value)) {
        field->setProperty(LastNumber, field->text());
        return value;
    }
    field->setText(field->property(LastNumber).toString());
    return field->text().toDouble();
}
