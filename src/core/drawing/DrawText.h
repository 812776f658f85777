#pragma once

#include <QRectF>
#include <QString>

class Letters;
class QPainter;

/// Draws a text beside a point: `alignment` says which side or corner of the text lies at the
/// anchor (Qt::AlignLeft: the text begins there; Qt::AlignBottom: it stands on it). The text is
/// kept inside `inside` when that is given, and turned by 90 degrees to the left if asked for.
/// Returns the rectangle that the text takes.
QRectF drawText(QPainter& painter, const Letters& letters, const QPointF& anchor,
                const QString& text, Qt::Alignment alignment, const QRectF& inside = QRectF(),
                bool upright = false);
/// The same in the painter's font, for windows.
QRectF drawText(QPainter& painter, const QPointF& anchor, const QString& text,
                Qt::Alignment alignment, const QRectF& inside = QRectF(), bool upright = false);

/// A tick's number with as many decimals as the step between ticks needs; never "-0".
QString tickText(double value, double step);
