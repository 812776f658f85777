#include "measurement/Writing.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace {

class Writing {
    Q_DECLARE_TR_FUNCTIONS(Writing)
};

bool lookUp(const QString& name, struct stat* found) {
    return stat(QFile::encodeName(name).constData(), found) == 0;
}

/// Every file that the measurement as it stands was read from.
QStringList filesRead(const Inputs& inputs) {
    QStringList names = inputs.dark;
    for (const StackInputs* stack : {&inputs.i1, &inputs.i0}) {
        for (const Stack::File& file : stack->files) {
            names << file.path;
        }
    }
    for (const ReferenceInput& reference : inputs.references) {
        names << reference.file.path;
    }
    names << inputs.standard.path;
    if (inputs.map) {
        names << inputs.map->file.path;
    }
    return names;
}

bool isInput(const Measurement& measurement, const QString& fileName) {
    struct stat target {};
    if (!lookUp(fileName, &target)) {
        return false;
    }
    // By what they are, not by their names: links lead to the same file.
    const QStringList inputs = filesRead(measurement.inputs());
    return std::any_of(inputs.begin(), inputs.end(), [&target](const QString& name) {
        struct stat input {};
        return !name.isEmpty() && lookUp(name, &input) && input.st_dev == target.st_dev &&
               input.st_ino == target.st_ino;
    });
}

}  // namespace

Outcome writeFile(const Measurement& measurement, const QString& fileName,
                  const std::function<bool()>& writer) {
    if (isInput(measurement, fileName)) {
        return Outcome::failure(
            Writing::tr("the measurement was read from this file: %1").arg(fileName));
    }
    if (!writer()) {
        return Outcome::failure(Writing::tr("cannot be written: %1").arg(fileName));
    }
    Outcome done = Outcome::note(Writing::tr("Saved %1").arg(QFileInfo(fileName).fileName()));
    done.files << fileName;
    return done;
}
