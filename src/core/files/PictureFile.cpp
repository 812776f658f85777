#include "files/PictureFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>

#include "base/LargeMemory.h"
#include "files/PictureResolution.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

constexpr int Magnification = 3;  // about 300 dots per inch: what journals ask for
constexpr double PointsPerInch = 72.0;

QByteArray suffixOf(const QString& fileName) {
    return QFileInfo(fileName).suffix().toLower().toLatin1();
}

/// Blanks out when a PDF was made, which it need not say: the same drawing is the same file. The
/// places of its objects stay.
void forgetTime(QByteArray* pdf) {
    const int from = pdf->lastIndexOf("/CreationDate (");
    const int end = from < 0 ? -1 : pdf->indexOf(')', from);
    if (end >= 0) {
        std::fill(pdf->begin() + from, pdf->begin() + end + 1, ' ');
    }
}

bool writePdf(const QString& fileName, const QSize& size,
              const std::function<void(QPainter&)>& paint) {
    WholeDevice file(fileName);
    if (!file.open()) {
        return false;
    }
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QPdfWriter writer(&pdf);
    writer.setResolution(PictureDotsPerInch);
    writer.setPageSize(QPageSize(QSizeF(size) * PointsPerInch / PictureDotsPerInch,
                                 QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setCreator(QStringLiteral("Tarnwick"));
    writer.setTitle(QFileInfo(fileName).completeBaseName());
    QPainter painter(&writer);
    paint(painter);
    if (!painter.end()) {
        return false;
    }
    forgetTime(&pdf.buffer());
    return file.write(pdf.buffer()) == pdf.buffer().size() && file.putInPlace() &&
           noteSaved(fileName);
}

}  // namespace

QString originChunkKey() {
    return QStringLiteral("Tarnwick origin");
}

bool isPictureName(const QString& fileName) {
    return QImageWriter::supportedImageFormats().contains(suffixOf(fileName));
}

bool isDrawingName(const QString& fileName) {
    return suffixOf(fileName) == "pdf" || isPictureName(fileName);
}

bool writePicture(const QString& fileName, const QImage& picture, const QString& origin) {
    const QByteArray format = suffixOf(fileName);
    if (picture.isNull() || !isPictureName(fileName)) {
        return false;
    }
    WholeDevice file(fileName);
    if (!file.open()) {
        return false;
    }
    QImage withText = picture;
    if (!origin.isEmpty() && format == "png") {
        askForMemory(static_cast<quint64>(picture.sizeInBytes()));  // a copy
        withText.setText(originChunkKey(), origin);  // the writer's setText() folds line ends
    }
    QImageWriter writer(&file, format);
    return writer.write(withText) && file.putInPlace() && noteSaved(fileName);
}

bool writeDrawing(const QString& fileName, const QSize& size,
                  const std::function<void(QPainter&)>& paint) {
    if (size.isEmpty()) {
        return false;
    }
    if (suffixOf(fileName) == "pdf") {
        return writePdf(fileName, size, paint);
    }
    QImage picture = newPicture(size * Magnification, QImage::Format_RGB32);
    if (picture.isNull()) {
        return false;
    }
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.scale(Magnification, Magnification);
    paint(painter);
    painter.end();
    setPictureResolution(&picture, Magnification * PictureDotsPerInch);
    return writePicture(fileName, picture);
}
