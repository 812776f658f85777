#include "files/PictureResolution.h"

#include <QImage>

void setPictureResolution(QImage* picture, int dotsPerInch) {
    constexpr double InchesPerMeter = 1 / 0.0254;
    const int dots = qRound(dotsPerInch * InchesPerMeter);
    picture->setDotsPerMeterX(dots);
    picture->setDotsPerMeterY(dots);
}
