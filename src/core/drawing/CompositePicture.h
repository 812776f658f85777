#pragma once

#include <QString>
#include <array>

#include "drawing/MapPicture.h"

class Letters;
class QPainter;

// Three maps in one picture, as amounts of red, green and blue light.

/// Maps of one size; without values: none of that colour.
struct CompositeMaps {
    std::array<ShownValues, 3> maps;
    double low = 0.0;   ///< no light of a colour, as below
    double high = 1.0;  ///< all of it, as above
};

/// Their picture: the light of a value v is (v - low) / (high - low) between 0 and 1, encoded as
/// sRGB, so that mixtures are as bright as their parts. Mid grey where any of them has no number or
/// no value; black where all are low. Null without maps.
QImage compositePicture(const CompositeMaps& composite);

/// What the colours are called; empty: not there.
using CompositeNames = std::array<QString, 3>;

/// A triangle of all mixtures whose amounts sum to 1, red above, green left and blue right, with
/// the names of its colours below, in the painter's pen. A colour that is not there is black.
void paintCompositeLegend(QPainter& painter, const Letters& letters, const QRectF& place,
                          const CompositeNames& names);

/// A picture with what is needed to read it.
struct CompositeParts {
    QImage picture;
    CompositeNames names;
    QString title;
    QString range;  ///< what black and full colours stand for
};

/// The picture under its title with the legend beside it, enlarged as by withColorBar(). The same
/// parts give the same pixels on every machine. Needs a QGuiApplication for its letters. Null for a
/// null picture.
QImage withLegend(const CompositeParts& parts);
