#include "display/MessageLine.h"

#include <QDir>
#include <QFileInfo>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QToolTip>

namespace {
constexpr int MostInALine = 2;
}

QString textOf(const Outcome& outcome) {
    const QString gap = QStringLiteral("   ");
    const auto inShort = [&gap](const QStringList& texts, const QString& more) {
        return texts.size() <= MostInALine ? texts.join(gap)
                                           : texts.first() + gap + more.arg(texts.size() - 1);
    };
    QString notes = inShort(outcome.notes, MessageLine::tr("(and %1 more)"));
    if (!notes.isEmpty() && !outcome.files.isEmpty()) {
        const QString folder = QFileInfo(outcome.files.last()).absolutePath();
        //: folder of files that were saved; stands behind "Saved NAME"
        notes += QLatin1Char(' ') + MessageLine::tr("in %1").arg(QDir::toNativeSeparators(folder));
    }
    QStringList parts{inShort(outcome.texts(), MessageLine::tr("(%1 more in Messages)")), notes};
    parts.removeAll(QString());
    return parts.join(gap);
}

MessageLine::MessageLine(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize MessageLine::sizeHint() const {
    const QMargins margins = contentsMargins();
    return QSize(fontMetrics().averageCharWidth(), fontMetrics().height() +
                                                       (m_lines - 1) * fontMetrics().lineSpacing() +
                                                       margins.top() + margins.bottom());
}

QStringList MessageLine::shown() const {
    QTextLayout layout(text(), font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(contentsRect().width());
        const bool isLast = lines.size() + 1 == m_lines;
        const QString rest = text().mid(line.textStart());
        lines << (isLast ? fontMetrics().elidedText(rest, Qt::ElideRight, contentsRect().width())
                         : rest.left(line.textLength()));
        if (isLast) {
            break;
        }
    }
    layout.endLayout();
    return lines;
}

bool MessageLine::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && shown().join(QString()) != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

void MessageLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(),
                          isEnabled(), shown().join(QLatin1Char('\n')), foregroundRole());
}
