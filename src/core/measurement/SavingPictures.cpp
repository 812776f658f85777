// Pictures of what is shown, and of all results.

#include <QCoreApplication>

#include "drawing/BarPicture.h"
#include "files/FileNames.h"
#include "files/PictureFile.h"
#include "measurement/CompositeDisplay.h"
#include "measurement/Display.h"
#include "measurement/MapDisplay.h"
#include "measurement/Origin.h"
#include "measurement/PlotSaving.h"
#include "measurement/Room.h"
#include "measurement/SavedResult.h"
#include "measurement/Saving.h"
#include "measurement/Writing.h"

namespace {

class Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

// Of a pixel of a picture while it is made and written: its colours, and those in the order of the
// file.
constexpr quint64 PictureBytes = 8;

QString originText(const Measurement& measurement, const Result& result, const char* savedBy) {
    return originOf(measurement, result, QString::fromLatin1(savedBy)).toText();
}

Outcome writePictureFile(const Measurement& measurement, const QString& fileName,
                         const QImage& picture, const QString& origin, const QString& asked) {
    const QString name = asGiven(fileName, asked);
    const Outcome whyNot = judgePictureName(name, isPictureName(fileName));
    return whyNot.failed() ? whyNot : writeFile(measurement, name, [&] {
        return writePicture(fileName, picture, origin);
    });
}

/// @param problem why there is no picture, where that is known
Outcome savePicture(Measurement& measurement, const QString& fileName, const QImage& picture,
                    const char* savedBy, const QString& problem) {
    if (picture.isNull()) {
        return Outcome::failure(problem.isEmpty() ? Saving::tr("no image is shown") : problem);
    }
    if (measurement.frameKind() != FrameView::Kind::Counts) {
        const Outcome view = measurement.judge(measurement.settings().frameView);
        if (view.failed()) {
            return view;
        }
    }
    const Result* result = measurement.shownResult();
    if (result != nullptr && !result->tookPart()) {
        return mapWithoutValues();
    }
    const QString origin =
        result != nullptr ? originText(measurement, *result, savedBy) : QString();
    Outcome outcome = writePictureFile(measurement, fileName, picture, origin, fileName);
    if (result != nullptr && !outcome.failed()) {
        outcome += judgeSaved(measurement, *result);
    }
    return outcome;
}

}  // namespace

Outcome saveImage(Measurement& measurement, const QString& fileName) {
    if (showsComposite(measurement)) {
        return saveComposite(measurement, fileName, measurement.settings().composite);
    }
    if (const Outcome room = judgeRoomForPixels(measurement, PictureBytes); room.failed()) {
        return room;
    }
    QString problem;
    const QImage picture = shownPicture(measurement, &problem);
    return savePicture(measurement, fileName, picture, "save_image", problem);
}

Outcome saveImageWithBar(Measurement& measurement, const QString& fileName) {
    if (showsComposite(measurement)) {
        return saveComposite(measurement, fileName, measurement.settings().composite);
    }
    if (const Outcome letters = judgeLetters(measurement); letters.failed()) {
        return letters;
    }
    const quint64 each = PictureBytes + sizeof(QRgb);
    if (const Outcome room = judgeRoomForPixels(measurement, each); room.failed()) {
        return room;
    }
    QString problem;
    const QImage picture = measurement.rehearsal() != nullptr
                               ? shownPicture(measurement)
                               : withColorBar(shownWithBar(measurement, &problem));
    return savePicture(measurement, fileName, picture, "save_image_with_bar", problem);
}

namespace {

Outcome writeAllImages(const Measurement& measurement, const QString& fileName) {
    Outcome outcome;
    for (int kind = 0; kind < Reference::KindCount; ++kind) {
        for (int i = 0; i < measurement.referenceCount(); ++i) {
            const Reference& reference = *measurement.references()[static_cast<std::size_t>(i)];
            const Result& result = reference.result(kind);
            if (!reference.takesPart() || !result.tookPart() || result.image.img() == nullptr) {
                continue;
            }
            const QString name = taggedName(fileName, QStringLiteral("%1-%2").arg(i).arg(kind));
            const QString origin = originText(measurement, result, "save_image");
            outcome += writePictureFile(measurement, name, pictureOf(measurement, result), origin,
                                        fileName);
            if (outcome.failed()) {
                return outcome;  // for one reason, said once
            }
            const Outcome judged = judgeSaved(measurement, result);
            if (outcome.texts().isEmpty()) {
                outcome += judged;  // once for all of them
            }
        }
    }
    return outcome;
}

}  // namespace

Outcome saveAllImages(const Measurement& measurement, const QString& fileName) {
    // They stay.
    const int pictures = Reference::KindCount * measurement.referenceCount();
    Outcome outcome = judgeRoomForPixels(measurement, PictureBytes + 3 * quint64(pictures));
    if (outcome.failed()) {
        return outcome;
    }
    outcome += writeTogether([&] { return writeAllImages(measurement, fileName); });
    return outcome.files.isEmpty() && !outcome.failed()
               ? Outcome::failure(Saving::tr("there are no result images"))
               : outcome;
}
