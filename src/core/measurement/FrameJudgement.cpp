#include "measurement/FrameJudgement.h"

#include <QFileInfo>
#include <QMap>
#include <algorithm>
#include <set>

#include "frames/EnergyFromName.h"
#include "measurement/Measurement.h"

namespace {

// Between ultraviolet light and what no monochromator of an absorption edge gives.
constexpr double LowestEnergy = 50.0;
constexpr double HighestEnergy = 200e3;
constexpr double SaturatedShare = 1e-3;
constexpr int FewestEnergies = 3;

using Files = QVector<Stack::File>;

/// Those of the files, by names without folders: the first, and how many there are besides.
QString named(const Files& files) {
    const QString first = QFileInfo(files.first().path).fileName();
    return files.size() == 1 ? first
                             : Stack::tr("%1 and %n more", nullptr, files.size() - 1).arg(first);
}

template <class Is>
Files those(const Files& files, Is is) {
    Files found;
    std::copy_if(files.begin(), files.end(), std::back_inserter(found), is);
    return found;
}

bool isCut(const Stack::File& file) {
    return !file.isNumbered && cutsNumber(file.path, expressionOf(file.names.pattern));
}

bool isAbsurd(const Stack::File& file) {
    return !file.isNumbered && !(file.energy >= LowestEnergy && file.energy <= HighestEnergy);
}

QStringList aboutNames(const Files& fresh) {
    QStringList texts;
    const Files cut = those(fresh, isCut);
    if (!cut.isEmpty()) {
        texts << Stack::tr("the energy pattern finds only part of a number: %1 eV read from %2")
                     .arg(cut.first().energy)
                     .arg(named(cut));
    }
    const Files absurd =
        those(fresh, [](const Stack::File& file) { return isAbsurd(file) && !isCut(file); });
    if (!absurd.isEmpty()) {
        texts << Stack::tr("an energy below 50 eV or above 200 keV: %1 eV read from %2")
                     .arg(absurd.first().energy)
                     .arg(named(absurd));
    }
    return texts;
}

/// Of all frames of a stack: how their energies stand to each other.
QStringList aboutEnergies(const Files& files) {
    QStringList texts;
    const Files numbered = those(files, [](const Stack::File& file) { return file.isNumbered; });
    if (!numbered.isEmpty()) {
        texts << Stack::tr("no energy in the name, the number of the frame stands for it: %1")
                     .arg(named(numbered));
    }
    const bool ascends = std::is_sorted(
        files.begin(), files.end(),
        [](const Stack::File& a, const Stack::File& b) { return a.energy < b.energy; });
    if (!ascends) {
        texts << Stack::tr(
            "the energies of the frames do not ascend: spectra and analyses take "
            "them in order of energy");
    }
    std::set<double> energies;
    for (const Stack::File& file : files) {
        energies.insert(file.energy);
    }
    const int repeated = files.size() - static_cast<int>(energies.size());
    if (repeated > 0) {
        texts << Stack::tr("%n frame(s) with an energy that an earlier frame has", nullptr,
                           repeated);
    }
    return texts;
}

/// What the files say of themselves, each remark once.
QStringList aboutFiles(const Stack& stack, int firstNew) {
    QMap<QString, Files> remarked;
    for (int i = firstNew; i < stack.size(); ++i) {
        for (const QString& remark : stack.frames().at(i)->remarks) {
            remarked[remark] << stack.files().at(i);
        }
    }
    QStringList texts;
    for (auto it = remarked.constBegin(); it != remarked.constEnd(); ++it) {
        texts << QStringLiteral("%1: %2").arg(named(it.value()), it.key());
    }
    return texts;
}

double saturatedShare(const FrameSet& frames) {
    double saturated = 0.0;
    double pixels = 0.0;
    for (int i = 0; i < frames.size(); ++i) {
        const TiffData& frame = *frames.at(i);
        saturated += static_cast<double>(frame.saturated);
        pixels += static_cast<double>(frame.width) * frame.height;
    }
    return pixels > 0.0 ? saturated / pixels : 0.0;
}

/// Nothing where all dark frames are of the images' size.
QString aboutDark(const Measurement& m) {
    const int unused = m.imageSize().isEmpty() ? 0 : m.dark().loaded() - m.dark().fitting();
    return unused == 0
               ? QString()
               : Measurement::tr("%n dark frame(s) not used: of another size than the images",
                                 nullptr, unused);
}

QString text(const QSize& size) {
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

/// Nothing where the I0 frames are of the images' size.
QString aboutSizes(const Measurement& m) {
    const QSize i0 = m.stack(StackId::I0).imageSize();
    const QSize i1 = m.stack(StackId::I1).imageSize();
    return i0.isEmpty() || i1.isEmpty() || i0 == i1
               ? QString()
               : Measurement::tr("the I0 frames have %1 pixels, the I1 frames %2")
                     .arg(text(i0), text(i1));
}

}  // namespace

QStringList warningsOf(const Stack& stack, int firstNew) {
    if (firstNew >= stack.size()) {
        return {};  // of the others it has been said
    }
    QStringList texts = aboutFiles(stack, firstNew) + aboutNames(stack.files().mid(firstNew)) +
                        aboutEnergies(stack.files());
    for (QString& text : texts) {
        text.prepend(stack.name() + QStringLiteral(": "));
    }
    texts << saturatedText(stack, saturatedShare(stack.frames()));
    texts.removeAll(QString());
    return texts;
}

QString saturatedText(const Stack& stack, double share) {
    return share > SaturatedShare ? stack.name() + QStringLiteral(": ") +
                                        Stack::tr("%1 % of the pixels are saturated (65535 counts)")
                                            .arg(100.0 * share, 0, 'g', 2)
                                  : QString();
}

Outcome judgeFrames(const Measurement& m, Work work) {
    for (const StackId id : {StackId::I1, StackId::I0}) {
        if (m.stack(id).isLoading()) {
            return Outcome::failure(Measurement::tr("%1 is being loaded").arg(m.stack(id).name()));
        }
    }
    const QString sizes = aboutSizes(m);
    if (!sizes.isEmpty()) {
        return Outcome::failure(sizes);
    }
    std::set<double> energies;
    for (const Stack::File& file : m.stack(StackId::I1).files()) {
        energies.insert(file.energy);
    }
    if (work != Work::Difference && energies.size() < FewestEnergies) {
        return Outcome::failure(
            Measurement::tr("an edge needs three energies, the I1 frames have "
                            "%n",
                            nullptr, static_cast<int>(energies.size())));
    }
    Outcome outcome;
    if (m.stack(StackId::I0).size() == 0) {
        outcome.warnings << Measurement::tr("no I0 frames: I0 counts as 1 everywhere");
    }
    const QString dark = aboutDark(m);
    if (!dark.isEmpty()) {
        outcome.warnings << dark;
    }
    return outcome;
}

QStringList Measurement::lastingWarnings() const {
    QStringList texts{aboutSizes(*this), aboutDark(*this)};
    texts.removeAll(QString());
    return texts;
}
