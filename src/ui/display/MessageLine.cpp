#include "display/MessageLine.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace {
constexpr int MostInALine = 2;
}

QString textOf(const Outcome& outcome) {
    const QString gap = QStringLiteral("   ");
    if (!outcome.files.isEmpty() && !outcome.notes.isEmpty() && !outcome.texts().isEmpty() &&
        !outcome.failed()) {
        return outcome.notes.first() + gap + textOf({{}, outcome.warnings, {}, {}, false});
    }
    const QStringList texts = outcome.texts().isEmpty() ? outcome.notes : outcome.texts();
    if (texts.size() <= MostInALine) {
        return texts.join(gap);
    }
    const int more = texts.size() - 1;
    return texts.first() + gap +
           (outcome.texts().isEmpty() ? MessageLine::tr("(and %1 more)").arg(more)
                                      : MessageLine::tr("(%1 more in Messages)").arg(more));
}

MessageLine::MessageLine(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QString MessageLine::shown() const {
    return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}

bool MessageLine::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && shown() != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

void MessageLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(),
                          isEnabled(), shown(), foregroundRole());
}
