#include "display/Availability.h"

#include <QVariant>
#include <QWidget>

namespace {

constexpr char OwnToolTip[] = "ownToolTip";
constexpr char WhyNot[] = "whyNot";

void showToolTip(QWidget* control) {
    QString text = control->property(OwnToolTip).toString();
    const QString whyNot = control->property(WhyNot).toString();
    if (!text.isEmpty() && !whyNot.isEmpty()) {
        text += QLatin1Char('\n');
    }
    control->setToolTip(text + whyNot);
}

}  // namespace

void setUsable(QWidget* control, const QString& whyNot) {
    const QVariant before = control->property(WhyNot);
    if (before.isValid() && before.toString() == whyNot) {
        return;
    }
    if (!control->property(OwnToolTip).isValid()) {
        control->setProperty(OwnToolTip, control->toolTip());
    }
    control->setProperty(WhyNot, whyNot);
    control->setEnabled(whyNot.isEmpty());
    showToolTip(control);
}

void setOwnToolTip(QWidget* control, const QString& text) {
    control->setProperty(OwnToolTip, text);
    showToolTip(control);
}
