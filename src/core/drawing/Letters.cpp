#include "drawing/Letters.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

// Resources of a static library are linked in only when they are asked for by name.
static void initFontResource() {
    Q_INIT_RESOURCE(fonts);
}

namespace {

constexpr double DesignSize = 1024.0;

QString carriedFile(Letters::Weight weight) {
    return weight == Letters::Bold ? QStringLiteral(":/letters/DejaVuSans-Bold.ttf")
                                   : QStringLiteral(":/letters/DejaVuSans.ttf");
}

QFont carriedFont(double pixelSize, Letters::Weight weight) {
    // A PDF embeds fonts by name only, and only so the machine finds others that go with it.
    static const bool known =
        QFontDatabase::addApplicationFont(carriedFile(Letters::Normal)) >= 0 &&
        QFontDatabase::addApplicationFont(carriedFile(Letters::Bold)) >= 0;
    Q_UNUSED(known);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(qRound(pixelSize));
    font.setBold(weight == Letters::Bold);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QRawFont carriedOutlines(Letters::Weight weight) {
    QFile file(carriedFile(weight));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isOpen);
    Q_UNUSED(isOpen);
    return QRawFont(file.readAll(), DesignSize, QFont::PreferNoHinting);
}

/// How many characters from one on are alike: the font has all of them or none.
int samePiece(const QRawFont& font, const QVector<uint>& text, int from) {
    const bool isCarried = font.supportsCharacter(text[from]);
    int end = from + 1;
    while (end < text.size() && font.supportsCharacter(text[end]) == isCarried) {
        ++end;
    }
    return end - from;
}

/// Appends a text in the font at (x, 0); returns its width.
double addCarried(const QRawFont& font, const QString& text, double x, QPainterPath* path) {
    const QVector<quint32> glyphs = font.glyphIndexesForString(text);
    const QVector<QPointF> advances =
        font.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
    double width = 0.0;
    for (int i = 0; i < glyphs.size(); ++i) {
        if (path != nullptr) {
            path->addPath(font.pathForGlyph(glyphs[i]).translated(x + width, 0.0));
        }
        width += advances[i].x();
    }
    return width;
}

}  // namespace

Letters Letters::ofPictures(double pixelSize, Weight weight) {
    initFontResource();
    Letters letters;
    letters.m_font = carriedFont(pixelSize, weight);
    letters.m_outlines = carriedOutlines(weight);
    letters.m_scale = pixelSize / DesignSize;
    return letters;
}

double Letters::ascent() const {
    return m_outlines ? m_outlines->ascent() * m_scale : QFontMetricsF(m_font).ascent();
}

double Letters::height() const {
    return m_outlines ? (m_outlines->ascent() + m_outlines->descent()) * m_scale
                      : QFontMetricsF(m_font).height();
}

double Letters::width(const QString& text) const {
    if (!m_outlines) {
        return QFontMetricsF(m_font).horizontalAdvance(text);
    }
    return addOutlines(text, nullptr) * m_scale;
}

/// Appends the text at the origin, in units of the outlines, and returns its width there.
double Letters::addOutlines(const QString& text, QPainterPath* path) const {
    const QVector<uint> all = text.toUcs4();
    double width = 0.0;
    for (int from = 0; from < all.size();) {
        const int count = samePiece(*m_outlines, all, from);
        const QString piece = QString::fromUcs4(all.constData() + from, count);
        if (m_outlines->supportsCharacter(all[from])) {
            width += addCarried(*m_outlines, piece, width, path);
        } else {
            QFont font = m_font;
            font.setPixelSize(qRound(DesignSize));
            if (path != nullptr) {
                path->addText(width, 0.0, font, piece);
            }
            width += QFontMetricsF(font).horizontalAdvance(piece);
        }
        from += count;
    }
    return width;
}

QString Letters::elided(const QString& text, double width) const {
    if (!m_outlines) {
        return QFontMetricsF(m_font).elidedText(text, Qt::ElideMiddle, width);
    }
    if (this->width(text) <= width) {
        return text;
    }
    const QVector<uint> all = text.toUcs4();
    const auto keeping = [&](int count) {  // of the first ones one more than of the last ones
        return QString::fromUcs4(all.constData(), count - count / 2) + QChar(0x2026) +
               QString::fromUcs4(all.constData() + all.size() - count / 2, count / 2);
    };
    int fits = 0;
    int tooMany = all.size();
    while (tooMany - fits > 1) {
        const int middle = (fits + tooMany) / 2;
        (this->width(keeping(middle)) <= width ? fits : tooMany) = middle;
    }
    return keeping(fits);
}

void Letters::draw(QPainter& painter, const QPointF& baseLine, const QString& text) const {
    if (!m_outlines || painter.paintEngine()->type() == QPaintEngine::Pdf) {
        painter.setFont(m_font);
        painter.drawText(baseLine, text);
        return;
    }
    QPainterPath outlines;
    outlines.setFillRule(Qt::WindingFill);
    addOutlines(text, &outlines);
    painter.save();
    painter.translate(baseLine);
    painter.scale(m_scale, m_scale);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outlines, painter.pen().color());
    painter.restore();
}
