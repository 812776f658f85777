#include "measurement/PlotSaving.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "drawing/PlotPicture.h"
#include "files/PictureFile.h"
#include "measurement/Display.h"
#include "measurement/Writing.h"

namespace {

class Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

}  // namespace

Outcome judgeLetters(const Measurement& measurement) {
    const bool hasLetters = measurement.rehearsal() != nullptr ||
                            qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    return hasLetters ? Outcome()
                      : Outcome::failure(Saving::tr("there are no letters to draw with"));
}

Outcome judgePictureName(const QString& fileName, bool isKnown) {
    return isKnown
               ? Outcome()
               : Outcome::failure(
                     Saving::tr("no picture format has this suffix (use .png): %1").arg(fileName));
}

Outcome judgePlotFile(const Measurement& measurement, const QString& fileName,
                      const QStringList& alsoRead) {
    Outcome outcome = judgeLetters(measurement);
    if (!outcome.failed()) {
        outcome = judgePictureName(fileName, isDrawingName(fileName));
    }
    return outcome.failed() ? outcome : judgeTarget(measurement, fileName, alsoRead);
}

Outcome writePlotFile(const Measurement& measurement, const QString& fileName,
                      const SpectrumPlot& plot, const QStringList& alsoRead) {
    const Outcome judged = judgePlotFile(measurement, fileName, alsoRead);
    return judged.failed() ? judged
                           : writeFile(
                                 measurement, fileName, [&] { return writePlot(fileName, plot); },
                                 {}, alsoRead);
}

Outcome savePlot(Measurement& measurement, const QString& fileName) {
    const SpectrumPlot plot = shownPlot(measurement);
    const QString problem = measurement.sampleProblem();
    if (!problem.isEmpty()) {
        return Outcome::failure(problem);
    }
    if (plot.shown().isEmpty()) {
        return Outcome::failure(Saving::tr("the spectrum window shows no spectrum"));
    }
    Outcome outcome = writePlotFile(measurement, fileName, plot);
    if (!outcome.failed() && !plot.hasSample()) {
        outcome.warnings << Saving::tr(
            "there is no spectrum at the position: the plot shows the standard alone");
    }
    return outcome;
}
