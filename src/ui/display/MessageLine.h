#pragma once

#include <QLabel>

#include "measurement/Outcome.h"

/// What is to be said of an outcome in one line: its failures and warnings, behind what was saved,
/// else its notes. Of many the first, and how many more there are.
QString textOf(const Outcome& outcome);

/// A line of text that does not widen its window: what is too long is cut off with an ellipsis and
/// stands in the tool tip as a whole.
class MessageLine : public QLabel {
    Q_OBJECT

  public:
    explicit MessageLine(QWidget* parent = nullptr);

    /// Shows how an action ended; an empty line for one of which nothing is to be said.
    void say(const Outcome& outcome) { setText(textOf(outcome)); }

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QString shown() const;
};
