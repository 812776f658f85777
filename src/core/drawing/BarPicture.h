#pragma once

#include <QImage>
#include <QString>

#include "base/ColorMap.h"

/// A picture of an image with what is needed to read it.
struct BarPicture {
    QImage picture;  ///< one pixel for each of the image
    const ColorScale* colors = &frameColors();
    double low = 0.0;  ///< values of the ends of the colours
    double high = 1.0;
    bool marksOutside = false;  ///< values outside have colours, shown by triangles at the ends
    QString title;              ///< what is shown; saved pictures are in English
    QString source;             ///< the file that it comes from
    QString unit;               ///< of the values
};

/// The picture under its title and source with a colour bar beside it: ticks, both end values, the
/// unit. Small pictures are enlarged by a whole number, so that every pixel becomes a square of
/// its colour; letters and margins grow with large ones. The same parts give the same pixels on
/// every machine. Needs a QGuiApplication for its letters. Null for a null picture.
QImage withColorBar(const BarPicture& parts);

/// By how much withColorBar() enlarges a picture of this size, 1 for no enlargement.
int barPictureScale(const QSize& size);
/// Where the upper left corner of the picture lies in what withColorBar() makes.
QPoint barPictureOrigin(const BarPicture& parts);
