#include "panels/WhyNot.h"

#include <QCoreApplication>

QString whileAnalyzing(const Measurement& measurement) {
    return measurement.working() == Work::None
               ? QString()
               : QCoreApplication::translate("Analyzer",
                                             "Not while an analysis of the image runs.");
}

QString whyNotAnalyze(const Measurement& measurement, Work work) {
    if (measurement.working() == work) {
        return QString();
    }
    const QString running = whileAnalyzing(measurement);
    if (!running.isEmpty()) {
        return running;
    }
    if (measurement.isAtWork(Work::LoadI1) || measurement.isAtWork(Work::LoadI0)) {
        return QCoreApplication::translate("SelectDataFiles", "Wait until the stack is loaded.");
    }
    // Without I0 frames the beam counts as 1.0 everywhere: only the I1 frames are a must.
    return whyNoImages(measurement);
}

QString whyNoImages(const Measurement& measurement) {
    return measurement.stack(StackId::I1).frames().isEmpty()
               ? QCoreApplication::translate("Body", "Load the I1 frames first.")
               : QString();
}

QString tookNoPart() {
    return QCoreApplication::translate("Analyzer",
                                       "This reference took no part in the last analysis.");
}
