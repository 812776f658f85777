#pragma once

#include <QPushButton>
#include <algorithm>

/// A button as wide as its text: styles give short texts more room, which a narrow panel has not.
class NarrowButton : public QPushButton {
  public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override {
        const QSize usual = QPushButton::sizeHint();
        const QFontMetrics letters = fontMetrics();
        return {std::min(usual.width(), letters.horizontalAdvance(text()) + letters.height()),
                usual.height()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }
};
