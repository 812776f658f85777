#pragma once

#include <QFont>
#include <QRawFont>
#include <QString>
#include <optional>

class QPainter;
class QPainterPath;
class QPointF;

/// How texts are measured and drawn: with a font of the platform, as windows do, or for saved
/// pictures with the DejaVu Sans that the programs carry.
///
/// The letters of pictures are filled outlines at their designed distances, so that hinting,
/// subpixels, resolution and fonts of a machine do not matter: the same text is the same pixels
/// everywhere. Only what the carried font lacks, as Japanese file names, is taken from the fonts of
/// the machine. In a PDF letters stay text, which others can search and edit.
///
/// Both need a QGuiApplication; letters of pictures belong to the thread that made them.
class Letters {
  public:
    enum Weight { Normal, Bold };

    explicit Letters(const QFont& font) : m_font(font) {}
    static Letters ofPictures(double pixelSize, Weight weight = Normal);

    double ascent() const;
    /// Of a line: above and below the base line.
    double height() const;
    double width(const QString& text) const;
    /// The text, its middle replaced by an ellipsis when it is wider than that.
    QString elided(const QString& text, double width) const;

    /// Draws in the painter's pen from a point on the base line on. May change the painter's font.
    void draw(QPainter& painter, const QPointF& baseLine, const QString& text) const;

  private:
    Letters() = default;
    double addOutlines(const QString& text, QPainterPath* path) const;

    QFont m_font;                        // with outlines: the same letters as text
    std::optional<QRawFont> m_outlines;  // large, so that rounding to pixels is out of sight
    double m_scale = 1.0;
};
