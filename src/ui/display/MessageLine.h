#pragma once

#include <QLabel>

#include "measurement/Outcome.h"

/// What is to be said of an outcome in one line: its failures and warnings, then its notes, and the
/// folder of the files that were written. Of many of either the first, and how many more there are.
QString textOf(const Outcome& outcome);

/// Text that does not widen its window: what does not fit into its lines, usually one, is cut off
/// with an ellipsis and stands in the tool tip as a whole.
class MessageLine : public QLabel {
    Q_OBJECT
    Q_PROPERTY(int lines MEMBER m_lines)  // set by forms

  public:
    explicit MessageLine(QWidget* parent = nullptr);

    /// Shows how an action ended; an empty line for one of which nothing is to be said.
    void say(const Outcome& outcome) { setText(textOf(outcome)); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    /// The text in the lines that there is room for.
    QStringList shown() const;

    int m_lines = 1;
};
