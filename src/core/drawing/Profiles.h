#pragma once

#include <QVector>
#include <functional>

/// Value of a shown image at pixel (x, y).
using PixelValue = std::function<double(int x, int y)>;

/// Values along row y of a width x height image, each the mean over the rows y - half .. y + half
/// that lie inside it, so that the noise is that of a bin. Empty when row y lies outside.
QVector<double> rowProfile(int width, int height, const PixelValue& valueAt, int y, int half);

/// The same along column x, with the mean over columns.
QVector<double> columnProfile(int width, int height, const PixelValue& valueAt, int x, int half);
