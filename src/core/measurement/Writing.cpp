#include "measurement/Writing.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>

#include "base/LargeMemory.h"
#include "files/FilePlaces.h"
#include "files/FileTarget.h"
#include "files/FilesTogether.h"
#include "measurement/Share.h"

namespace {

class Writing {
    Q_DECLARE_TR_FUNCTIONS(Writing)
};

bool lookUp(const QString& name, struct stat* found) {
    return stat(QFile::encodeName(placeOf(name)).constData(), found) == 0;
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

/// Of files that a rehearsal would have written there are only the names.
bool isNamedAsOneOf(const QString& fileName, const QStringList& names) {
    const QString last = QFileInfo(fileName).fileName();
    return std::any_of(names.begin(), names.end(), [&](const QString& name) {
        return name.endsWith(last) && identityOf(name) == identityOf(fileName);
    });
}

/// By what they are, not by their names: links lead to the same file.
bool isOneOf(const QString& fileName, const QStringList& names) {
    struct stat target {};
    return !lookUp(fileName, &target)
               ? isNamedAsOneOf(fileName, names)
               : std::any_of(names.begin(), names.end(), [&target](const QString& name) {
                     struct stat other {};
                     return !name.isEmpty() && lookUp(name, &other) &&
                            other.st_dev == target.st_dev && other.st_ino == target.st_ino;
                 });
}

QString whyNot(Target target) {
    switch (target) {
        case Target::Fine:
            return QString();
        case Target::NoFolder:
            return Writing::tr("no such folder");
        case Target::FolderNotWritable:
            return Writing::tr("the folder cannot be written to");
        case Target::Taken:
            return Writing::tr("what is there is not a file");
    }
    return QString();
}

QString savedText(const QString& fileName) {
    return Writing::tr("Saved %1").arg(QFileInfo(fileName).fileName());
}

/// What the writer finishes may be put in its place later, see writeTogether().
bool write(const QString& fileName, const std::function<bool()>& writer) {
    if (FilesTogether* files = FilesTogether::inForce()) {
        files->callThem(fileName);
    }
    return writer();
}

}  // namespace

Outcome unwritable(const QString& fileName, const QString& why) {
    const QString text = Writing::tr("cannot be written: %1").arg(fileName);
    return Outcome::failure(why.isEmpty() ? text : text + QStringLiteral(" (%1)").arg(why));
}

Outcome judgeTarget(const Measurement& measurement, const QString& fileName,
                    const QStringList& alsoRead) {
    if (isOneOf(fileName, filesRead(measurement.inputs()) + alsoRead)) {
        return Outcome::failure(
            Writing::tr("the measurement was read from this file: %1").arg(fileName));
    }
    if (isOneOf(fileName, {measurement.batchFile()})) {
        return Outcome::failure(
            Writing::tr("the batch that runs was read from this file: %1").arg(fileName));
    }
    const Target target = targetAt(fileName);
    return target == Target::Fine ? Outcome() : unwritable(fileName, whyNot(target));
}

Outcome writeFile(const Measurement& measurement, const QString& fileName,
                  const std::function<bool()>& writer, const Rehearsal::Written& written,
                  const QStringList& alsoRead) {
    const Outcome judged = judgeTarget(measurement, fileName, alsoRead);
    if (judged.failed()) {
        return judged;
    }
    QString lack;
    const auto guarded = [&writer, &lack] {
        try {
            return writer();
        } catch (const std::bad_alloc&) {
            lack = lackOfMemory();
            return false;
        }
    };
    if (Rehearsal* rehearsal = measurement.rehearsal()) {
        rehearsal->write(fileName, written);
    } else if (Share* share = measurement.parts().share()) {
        if (share->keeps(fileName) && !share->keep(fileName, guarded)) {
            return unwritable(fileName, lack);
        }
    } else if (!write(fileName, guarded)) {
        return unwritable(fileName, lack);
    } else if (measurement.parts().folder()) {
        measurement.parts().folder()->wrote(fileName);
    }
    Outcome done = Outcome::note(savedText(fileName));
    done.files << fileName;
    return done;
}

Outcome writeTogether(const std::function<Outcome()>& work) {
    FilesTogether files;
    Outcome outcome = work();
    files.finish();
    for (const QString& name : files.failures()) {
        outcome.files.removeOne(name);
        outcome.notes.removeOne(savedText(name));
        outcome += unwritable(name);
    }
    return outcome;
}
