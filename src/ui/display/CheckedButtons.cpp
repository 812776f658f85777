#include "display/CheckedButtons.h"

#include <QApplication>
#include <QEvent>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr char Coloured[] = "coloured";

void colour(QAbstractButton* button) {
    QPalette palette;  // nothing of its own: that of the application
    if (button->isChecked()) {
        const QPalette usual = QApplication::palette(button);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            palette.setColor(group, QPalette::Button, usual.color(group, QPalette::Highlight));
            palette.setColor(group, QPalette::ButtonText,
                             usual.color(group, QPalette::HighlightedText));
        }
    }
    button->setProperty(Coloured, button->isChecked());
    button->setPalette(palette);
}

/// Looks when a button is painted: controls are also set in silence.
class Colouring : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isPaint = event->type() == QEvent::Paint;
        auto* button = isPaint || event->type() == QEvent::ApplicationPaletteChange
                           ? qobject_cast<QAbstractButton*>(watched)
                           : nullptr;  // it may be no button any more, as it is deleted
        if (button != nullptr &&
            (!isPaint || button->property(Coloured).toBool() != button->isChecked())) {
            colour(button);
        }
        return false;
    }
};

}  // namespace

void colourCheckedButtons(QWidget* window) {
    auto* colouring = new Colouring(window);
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        const bool isKind = qobject_cast<const QPushButton*>(button) != nullptr ||
                            qobject_cast<const QToolButton*>(button) != nullptr;
        if (isKind && button->isCheckable()) {
            button->installEventFilter(colouring);
        }
    }
}
