#include "measurement/FolderLoad.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "files/Answer.h"
#include "files/FileListing.h"
#include "files/FileNames.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "frames/EnergyFromName.h"
#include "frames/FrameHeader.h"
#include "measurement/Measurement.h"
#include "output/ReadOrigin.h"
#include "spectra/UsableRows.h"

namespace {

using Kind = Rehearsal::Kind;

/// What a file that a rehearsal would have written is; null: what stands on the disk.
const Rehearsal::Written* written(const Measurement& m, const QString& file) {
    return m.rehearsal() != nullptr ? m.rehearsal()->find(file) : nullptr;
}

bool hasEnergy(const Measurement& m, const QString& file) {
    const auto& names = m.settings().names;
    return std::any_of(std::begin(names), std::end(names), [&file](const NamePattern& pattern) {
        return numberFromName(file, QRegularExpression(pattern.pattern)).has_value();
    });
}

/// A map that was saved beside the frames; frames are told by their energies, which is faster, and
/// other files are not looked into.
bool isOwnResult(const Measurement& m, const QString& file) {
    if (const Rehearsal::Written* would = written(m, file)) {
        return would->kind != Kind::Frame && would->kind != Kind::Spectrum;
    }
    return isFrameName(file) && !hasEnergy(m, file) && readOrigin(file).has_value();
}

QStringList withoutResults(const Measurement& m, const QStringList& files) {
    QStringList kept;
    std::copy_if(files.begin(), files.end(), std::back_inserter(kept),
                 [&m](const QString& file) { return !isOwnResult(m, file); });
    return kept;
}

/// @param name within the folder of the listing; empty: that itself
void addPart(FolderListing* listing, const Measurement& m, const QString& folder,
             const QString& name) {
    const QFileInfo info(folder);
    if (info.isDir() && !(info.isReadable() && info.isExecutable())) {
        listing->closed << (name.isEmpty() ? folder : name);
    }
    listing->parts << FolderListing::Part{name, withoutResults(m, m.list(folder, {}))};
}

/// Why a file is no reference; empty: it is one.
QString whyNoReference(const Measurement& m, const QString& file, const FolderContents& contents) {
    const FrameGroup* i1 = contents.group(FrameKind::I1);
    if (const Rehearsal::Written* would = written(m, file)) {
        return would->kind == Kind::Spectrum && !contents.besideFrames
                   ? QString()
                   : FolderContents::tr("saved by this program");
    }
    if (contents.besideFrames) {
        const auto start = answerOf(file, [file] {
            InputFile text(placeOf(file));
            return text.open(QIODevice::ReadOnly) ? text.readLine(80) : QByteArray();
        });
        const bool isOwn = start && start->startsWith("###Tarnwick::XafsSpectrum");
        if (isOwn || readOrigin(file).has_value()) {
            return FolderContents::tr("saved by this program");
        }
    }
    const TakenSpectrum taken = takeSpectrumFile(file);
    if (!taken.whyNot.isEmpty()) {
        return taken.whyNot;
    }
    const double first = taken.spectrum.energy(0);
    const double last = taken.spectrum.energy(taken.spectrum.size() - 1);
    return i1 != nullptr && i1->hasEnergies() && (last < i1->lowest || first > i1->highest)
               ? FolderContents::tr("%1, the frames %2")
                     .arg(energiesText(first, last), energiesText(i1->lowest, i1->highest))
               : QString();
}

void judgeSpectra(const Measurement& m, FolderContents* contents) {
    QStringList references;
    for (const QString& file : contents->references) {
        const QString why = whyNoReference(m, file, *contents);
        if (why.isEmpty()) {
            references << file;
            continue;
        }
        const QString name = QFileInfo(file).fileName();
        const QString text = why.contains(name) ? why : QStringLiteral("%1: %2").arg(name, why);
        // Anything may lie beside frames; what has not answered nobody knows.
        const bool isOther = contents->besideFrames && !why.contains(givenUpText());
        (isOther ? contents->outcome.notes : contents->outcome.warnings)
            << FolderContents::tr("no reference: %1").arg(text);
    }
    contents->references = references;
    QStringList standards;
    for (const QString& file : contents->standards) {
        const Rehearsal::Written* would = written(m, file);
        const bool isOne = would != nullptr ? would->kind == Kind::Spectrum
                                            : takeSpectrumFile(file).whyNot.isEmpty();
        if (isOne) {
            standards << file;
        }
    }
    if (standards.size() > 1) {
        contents->outcome.warnings << FolderContents::tr("further standards, not taken: %1")
                                          .arg(filesText(standards.mid(1)));
    }
    contents->standards = standards;
}

/// Files by why they are left out.
using LeftOut = QMap<QString, QStringList>;

QStringList textsOf(const LeftOut& leftOut, FrameKind kind) {
    const QString name = kind == FrameKind::I1   ? QStringLiteral("I1")
                         : kind == FrameKind::I0 ? QStringLiteral("I0")
                                                 : FolderContents::tr("dark");
    QStringList texts;
    for (auto it = leftOut.begin(); it != leftOut.end(); ++it) {
        texts << FolderContents::tr("%1: not taken: %2: %3")
                     .arg(name, filesText(it.value()), it.key());
    }
    return texts;
}

FrameHeader headerOf(const Measurement& m, const QString& file) {
    const Rehearsal::Written* would = written(m, file);
    if (would == nullptr) {
        return frameHeader(file);
    }
    FrameHeader header;
    header.width = static_cast<quint32>(would->size.width());
    header.height = static_cast<quint32>(would->size.height());
    header.refusal = Rehearsal::whyNoFrame(*would);
    return header;
}

/// Leaves out what the stack would not take; `size` is that of the frames before, or becomes that
/// of the first.
QStringList readable(const Measurement& m, const QStringList& files, FrameKind kind, QSize* size,
                     LeftOut* leftOut) {
    const bool isStack = kind != FrameKind::Dark;
    const QRegularExpression pattern(m.settings().names[kind == FrameKind::I0 ? 0 : 1].pattern);
    const auto isNamed = [&pattern](const QString& file) {
        return numberFromName(file, pattern).has_value();
    };
    const bool areNamed = isStack && std::any_of(files.begin(), files.end(), isNamed);
    QStringList kept;
    for (const QString& file : files) {
        if (areNamed && !isNamed(file)) {
            (*leftOut)[Stack::tr("no energy in its name, while others have one")] << file;
            continue;
        }
        const FrameHeader header = headerOf(m, file);
        const QSize own(static_cast<int>(header.width), static_cast<int>(header.height));
        if (!header.refusal.isEmpty()) {
            (*leftOut)[header.refusal] << file;
        } else if (!size->isEmpty() && own != *size) {
            (*leftOut)[FolderContents::tr("%1 x %2 pixels, the first frame %3 x %4")
                           .arg(own.width())
                           .arg(own.height())
                           .arg(size->width())
                           .arg(size->height())]
                << file;
        } else {
            *size = own;
            kept << file;
        }
    }
    return kept;
}

/// Reduces the files to those that can be read.
Outcome judgeFrameFiles(const Measurement& m, FolderFiles* files) {
    Outcome outcome;
    QSize i1Size = files->of(FrameKind::I1).isEmpty() ? m.imageSize() : QSize();
    for (const FrameKind kind : {FrameKind::I1, FrameKind::I0, FrameKind::Dark}) {
        QStringList& own = files->of(kind);
        QSize ownSize;
        LeftOut leftOut;
        const QStringList kept =
            readable(m, own, kind, kind == FrameKind::I0 ? &ownSize : &i1Size, &leftOut);
        const QStringList texts = textsOf(leftOut, kind);
        (kept.isEmpty() && !own.isEmpty() ? outcome.failures : outcome.warnings) += texts;
        own = kept;
    }
    return outcome;
}

QString namesOf(const QStringList& files) {
    QStringList names;
    for (const QString& file : files) {
        names << QFileInfo(file).fileName();
    }
    return names.join(QStringLiteral(", "));
}

void takeReferences(Measurement& m, const QStringList& files, Outcome* outcome) {
    if (files.isEmpty()) {
        return;
    }
    for (int i = 0; i < files.size(); ++i) {
        if (i == m.referenceCount()) {
            *outcome += m.addReference();
        }
        if (i >= m.referenceCount()) {
            return;
        }
        m.change(i, [&](Reference& reference) {
            *outcome += reference.read(files[i]);
            reference.setBackground(XafsSpectrum::Simple);
            reference.setUse(true);
            reference.setDeltaE(0.0);
        });
    }
    outcome->notes << FolderContents::tr("references: %1").arg(namesOf(files));
    // Those of another measurement have no part in this one.
    for (int i = files.size(); i < m.referenceCount(); ++i) {
        m.change(i, [](Reference& reference) { reference.forget(); });
    }
}

}  // namespace

FolderListing listingOf(const Measurement& measurement, const QString& folder) {
    FolderListing listing;
    listing.path = folder;
    addPart(&listing, measurement, folder, QString());
    QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    std::sort(names.begin(), names.end(), comesBefore);
    QSet<QString> known{QFileInfo(folder).canonicalFilePath()};
    for (const QString& name : names) {
        const QString path = fileIn(folder, name);
        const QString place = QFileInfo(path).canonicalFilePath();
        if (!known.contains(place)) {  // a link may lead to where one is already
            known.insert(place);
            addPart(&listing, measurement, path, name);
        }
    }
    return listing;
}

FolderListing listingOf(const Measurement& measurement, const QStringList& chosen) {
    if (chosen.size() == 1 && QFileInfo(chosen.first()).isDir()) {
        return listingOf(measurement, chosen.first());
    }
    FolderListing listing;
    listing.path = QFileInfo(chosen.value(0)).absolutePath();
    listing.parts << FolderListing::Part();
    for (const QString& path : chosen) {
        if (QFileInfo(path).isDir()) {
            addPart(&listing, measurement, path, QFileInfo(path).fileName());
        } else {
            listing.parts.first().files << path;
        }
    }
    QStringList& files = listing.parts.first().files;
    std::sort(files.begin(), files.end(), comesBefore);
    return listing;
}

FolderContents contentsOf(const Measurement& measurement, const FolderListing& listing) {
    FolderContents contents = contentsOf(listing, measurement.settings().names);
    judgeSpectra(measurement, &contents);
    return contents;
}

FolderFiles filesOf(const FolderContents& contents) {
    FolderFiles files;
    for (const FrameKind kind : {FrameKind::I1, FrameKind::I0, FrameKind::Dark}) {
        if (const FrameGroup* group = contents.group(kind)) {
            files.of(kind) = group->files;
        }
    }
    files.references = contents.references;
    files.standard = contents.standards.value(0);
    return files;
}

Outcome openFolder(Measurement& measurement, FolderFiles files, const Outcome& found) {
    Outcome outcome = found;
    if (measurement.working() != Work::None) {
        measurement.stop();  // its frames are to be replaced
    }
    outcome += judgeFrameFiles(measurement, &files);
    if (outcome.failed()) {
        return outcome;
    }
    takeReferences(measurement, files.references, &outcome);
    if (!files.standard.isEmpty()) {
        outcome += measurement.loadStandard(files.standard);
        outcome.notes << FolderContents::tr("standard: %1").arg(namesOf({files.standard}));
    }
    measurement.loadTogether(files.of(FrameKind::I1), files.of(FrameKind::I0),
                             files.of(FrameKind::Dark), outcome);
    return {};
}

QString loadedText(const Stack& stack) {
    const auto fresh = stack.files().mid(stack.firstNew());
    if (fresh.isEmpty()) {
        return QString();
    }
    const auto order = std::minmax_element(
        fresh.begin(), fresh.end(),
        [](const Stack::File& a, const Stack::File& b) { return a.energy < b.energy; });
    const QString energies = energiesText(order.first->energy, order.second->energy);
    return fresh.size() == 1
               ? FolderContents::tr("loaded 1 frame of %1, %2").arg(stack.name(), energies)
               : FolderContents::tr("loaded %1 frames of %2, %3")
                     .arg(fresh.size())
                     .arg(stack.name(), energies);
}
