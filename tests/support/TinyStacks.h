#pragma once

#include <QByteArray>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "frames/FrameSet.h"

/// Count of a pixel: frame number, x, y.
using CountAt = std::function<quint16(int, int, int)>;

/// A frame in memory, its picture made.
std::unique_ptr<TiffData> tinyFrame(int width, int height, double energy,
                                    const std::function<quint16(int, int)>& count);

/// A stack in memory, one frame an energy.
FrameSet tinyStack(int width, int height, const std::vector<double>& energies,
                   const CountAt& count);

/// Writes "prefix-7112_5eV.tif" and so on into a directory, one file an energy (at most three
/// decimals); the images must not be taller than wide. The files' paths in the order of energies,
/// empty when one could not be written.
QStringList writeTinyStack(const QString& directory, const QString& prefix, int width, int height,
                           const std::vector<double>& energies, const CountAt& count);

/// The bytes of a little-endian, single-strip TIFF with a header of one's own choice.
QByteArray rawTiff(quint32 width, quint32 height, quint16 bits, const QByteArray& pixels);
