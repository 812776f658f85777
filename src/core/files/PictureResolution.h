#pragma once

class QImage;

/// Dots per inch that pictures carry, whatever the screen has.
constexpr int PictureDotsPerInch = 96;

/// Sets the resolution of a picture to be saved: the one that a new QImage has is the screen's, and
/// the same picture would become another file on another machine.
void setPictureResolution(QImage* picture, int dotsPerInch = PictureDotsPerInch);
