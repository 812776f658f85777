#include "measurement/FolderContents.h"

#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <algorithm>
#include <iterator>
#include <optional>

#include "frames/EnergyFromName.h"
#include "frames/FrameReader.h"

namespace {

struct Word {
    const char* text;
    FrameKind kind;
    int rank;       ///< the lower one counts where names hold several
    bool isPrefix;  ///< of a word such as "dark001"
};

// "dark_i1" is dark; "sample3_i0" is I0.
constexpr Word FrameWords[] = {
    {"dark", FrameKind::Dark, 0, true},    {"i1", FrameKind::I1, 1, false},
    {"it", FrameKind::I1, 1, false},       {"i0", FrameKind::I0, 1, false},
    {"io", FrameKind::I0, 1, false},       {"trans", FrameKind::I1, 2, true},
    {"sample", FrameKind::I1, 2, true},    {"specimen", FrameKind::I1, 2, true},
    {"incident", FrameKind::I0, 2, false}, {"flat", FrameKind::I0, 2, true},
    {"blank", FrameKind::I0, 2, true},     {"white", FrameKind::I0, 2, true},
    {"empty", FrameKind::I0, 2, true},     {"bias", FrameKind::Dark, 2, true}};

const QStringList& referenceWords() {
    static const QStringList words{"ref", "refs",      "reference", "references",
                                   "std", "standards", "stds",      "spectra"};
    return words;
}

const QStringList& standardWords() {
    static const QStringList words{"standard", "foil"};
    return words;
}

/// In small letters; "feI1_7100eV" has "fe", "i1", "7100e" and "v".
QStringList wordsOf(const QString& name) {
    static const QRegularExpression hump(QStringLiteral("([a-z0-9])([A-Z])"));
    static const QRegularExpression gap(QStringLiteral("[^a-z0-9]+"));
    return QString(name)
        .replace(hump, QStringLiteral("\\1 \\2"))
        .toLower()
        .split(gap, Qt::SkipEmptyParts);
}

bool holdsOneOf(const QString& name, const QStringList& words) {
    const QStringList held = wordsOf(name);
    return std::any_of(held.begin(), held.end(),
                       [&words](const QString& word) { return words.contains(word); });
}

/// What names say of a frame.
struct Verdict {
    std::optional<FrameKind> kind;
    bool isBoth = false;  ///< two kinds that count the same
    int rank = 9;
};

Verdict verdictOn(const QString& names) {
    Verdict verdict;
    for (const QString& held : wordsOf(names)) {
        for (const Word& word : FrameWords) {
            const QLatin1String text(word.text);
            if ((word.isPrefix ? held.startsWith(text) : held == text) &&
                word.rank <= verdict.rank) {
                verdict.isBoth = word.rank == verdict.rank &&
                                 (verdict.isBoth || verdict.kind.value_or(word.kind) != word.kind);
                verdict.kind = word.kind;
                verdict.rank = word.rank;
            }
        }
    }
    return verdict;
}

/// What names that differ in numbers alone have in common.
QString stemOf(const QString& file) {
    static const QRegularExpression numbers(QStringLiteral("[\\d_.,]+"));
    return QFileInfo(file).completeBaseName().replace(numbers, QStringLiteral("*"));
}

/// "fe-i1-*eV.tif" of files whose names differ in the energy.
QString patternOf(const QStringList& files) {
    static const QRegularExpression digitsAtEnd(QStringLiteral("\\d+$"));
    static const QRegularExpression digitsAtStart(QStringLiteral("^\\d+"));
    const QString first = QFileInfo(files.first()).fileName();
    if (files.size() == 1) {
        return first;
    }
    QString start = first;
    QString end = first;
    for (const QString& file : files) {
        const QString name = QFileInfo(file).fileName();
        while (!name.startsWith(start)) {
            start.chop(1);
        }
        while (!name.endsWith(end)) {
            end.remove(0, 1);
        }
    }
    return start.remove(digitsAtEnd) + QLatin1Char('*') + end.remove(digitsAtStart);
}

bool isSpectrum(const QString& file) {
    static const QStringList suffixes{"dat", "txt", "csv", "xmu", "xdi", "xy", "nor", "asc"};
    return suffixes.contains(QFileInfo(file).suffix().toLower());
}

constexpr int FewNames = 4;

struct Candidate {
    FrameGroup group;
    Verdict verdict;
    bool isNamedSo = false;  ///< its folder has the name of the kind and no other
};

class Finder {
  public:
    Finder(const FolderListing& listing, const NamePattern names[2])
        : m_listing(listing), m_names(names) {
        m_found.path = listing.path;
    }

    FolderContents find() {
        for (int i = 0; i < m_listing.parts.size(); ++i) {
            sortPart(i);
        }
        nameGroups();
        for (const FrameKind kind : {FrameKind::I1, FrameKind::I0, FrameKind::Dark}) {
            choose(kind);
        }
        takeTheRest();
        sortSpectra();
        conclude();
        return m_found;
    }

  private:
    void sortPart(int part);
    void nameGroups();
    void choose(FrameKind kind);
    void take(FrameKind kind, int candidate);
    void takeTheRest();
    void sortSpectra();
    void conclude();
    QString whyNoFrame() const;
    QString named(int i) const {
        const FrameGroup& group = m_found.groups[i];
        return QStringLiteral("%1 (%2)").arg(group.name, countText(group.files.size()));
    }

    const FolderListing& m_listing;
    const NamePattern* m_names;
    QVector<Candidate> m_candidates;
    QVector<bool> m_isDone;  // taken, or said of
    QStringList m_others;    // files of no kind
    FolderContents m_found;
};

/// The frames of a folder, by kinds and, of those that are of none, by what names have in common.
void Finder::sortPart(int part) {
    const FolderListing::Part& listed = m_listing.parts[part];
    QMap<QString, Candidate> groups;
    for (const QString& file : listed.files) {
        if (!isFrameName(file)) {
            if (!isSpectrum(file)) {
                m_others << file;
            }
            continue;
        }
        const QString name = QFileInfo(file).completeBaseName();
        const Verdict verdict = verdictOn(listed.name + QLatin1Char(' ') + name);
        const QString key =
            verdict.isBoth ? QStringLiteral("2 ") + stemOf(file)
            : verdict.kind
                ? QStringLiteral("1 %1 %2").arg(static_cast<int>(*verdict.kind)).arg(verdict.rank)
                : QStringLiteral("0 ") + stemOf(file);
        Candidate& candidate = groups[key];
        candidate.verdict = verdict;
        candidate.isNamedSo = wordsOf(listed.name).size() == 1;
        candidate.group.firstOf = part;
        candidate.group.files << file;
    }
    for (const Candidate& candidate : groups) {
        m_candidates << candidate;
    }
}

void Finder::nameGroups() {
    QMap<int, int> ofPart;
    for (const Candidate& candidate : m_candidates) {
        ++ofPart[candidate.group.firstOf];
    }
    for (Candidate& candidate : m_candidates) {
        FrameGroup& group = candidate.group;
        const QString folder = m_listing.parts[group.firstOf].name;
        const QString pattern = patternOf(group.files);
        group.name = folder.isEmpty()             ? pattern
                     : ofPart[group.firstOf] == 1 ? folder
                                                  : folder + QLatin1Char('/') + pattern;
        const bool isI0 = candidate.verdict.kind == FrameKind::I0;
        orderByEnergy(&group, m_names[isI0 ? 0 : 1]);
        m_found.groups << group;
    }
    m_isDone.fill(false, m_candidates.size());
}

void Finder::choose(FrameKind kind) {
    QVector<int> of;
    for (int i = 0; i < m_candidates.size(); ++i) {
        if (m_candidates[i].verdict.kind == kind && !m_candidates[i].verdict.isBoth) {
            of << i;
        }
    }
    std::stable_sort(of.begin(), of.end(), [this](int a, int b) {
        const Candidate& x = m_candidates[a];
        const Candidate& y = m_candidates[b];
        if (x.verdict.rank != y.verdict.rank) {
            return x.verdict.rank < y.verdict.rank;
        }
        return x.isNamedSo != y.isNamedSo ? x.isNamedSo
                                          : x.group.files.size() > y.group.files.size();
    });
    for (int i = 0; i < of.size(); ++i) {
        if (i == 0) {
            take(kind, of[i]);
        } else {
            m_isDone[of[i]] = true;
            m_found.outcome.warnings
                << FolderContents::tr("could be meant in place of %1, not taken: %2")
                       .arg(m_found.groups[of[0]].name, named(of[i]));
        }
    }
}

void Finder::take(FrameKind kind, int candidate) {
    m_isDone[candidate] = true;
    m_found.taken[static_cast<int>(kind)] = candidate;
}

/// Frames of no kind are what the folder is named after, else I1, if there are no others.
void Finder::takeTheRest() {
    QVector<int> withEnergies;
    QVector<int> all;
    for (int i = 0; i < m_candidates.size(); ++i) {
        if (!m_candidates[i].verdict.kind) {
            all << i;
            if (m_candidates[i].group.hasEnergies()) {
                withEnergies << i;
            }
        }
    }
    const Verdict own = verdictOn(QFileInfo(m_listing.path).fileName());
    const FrameKind kind = own.isBoth ? FrameKind::I1 : own.kind.value_or(FrameKind::I1);
    const QVector<int>& rest = withEnergies.isEmpty() ? all : withEnergies;
    if (rest.size() == 1 && m_found.taken[static_cast<int>(kind)] < 0) {
        take(kind, rest.first());
    }
}

void Finder::sortSpectra() {
    QStringList beside;
    for (const FolderListing::Part& part : m_listing.parts) {
        QStringList spectra;
        std::copy_if(part.files.begin(), part.files.end(), std::back_inserter(spectra), isSpectrum);
        if (part.name.isEmpty()) {
            beside = spectra;
        } else if (holdsOneOf(part.name, standardWords())) {
            m_found.standards += spectra;
        } else if (holdsOneOf(part.name, referenceWords())) {
            m_found.references += spectra;
        }
    }
    // A folder of references alone is one of them, too.
    m_found.besideFrames = m_found.references.isEmpty();
    if (m_found.besideFrames) {
        for (const QString& file : beside) {
            const bool isStandard = holdsOneOf(QFileInfo(file).completeBaseName(), standardWords());
            (isStandard ? m_found.standards : m_found.references) << file;
        }
    }
}

QString Finder::whyNoFrame() const {
    const QFileInfo folder(m_found.path);
    if (!folder.isDir()) {
        return (folder.exists() ? FolderContents::tr("not a folder: %1")
                                : FolderContents::tr("no such folder: %1"))
            .arg(m_found.path);
    }
    if (m_listing.closed.contains(m_found.path)) {
        return FolderContents::tr("the folder may not be read: %1").arg(m_found.path);
    }
    QStringList within;
    for (const FolderListing::Part& part : m_listing.parts) {
        within << part.name;
    }
    within.removeAll(QString());
    return within.isEmpty()
               ? FolderContents::tr("there is no frame in %1").arg(m_found.path)
               : FolderContents::tr("there is no frame in %1, nor in the folders in it: %2")
                     .arg(m_found.path,
                          within.size() <= FewNames ? within.join(", ") : filesText(within));
}

void Finder::conclude() {
    Outcome& outcome = m_found.outcome;
    QStringList rest;
    for (int i = 0; i < m_candidates.size(); ++i) {
        if (m_candidates[i].verdict.isBoth) {
            outcome.warnings
                << FolderContents::tr("named as frames of two kinds, not taken: %1").arg(named(i));
        } else if (!m_isDone[i]) {
            rest << named(i);
        }
    }
    const bool none = std::all_of(std::begin(m_found.taken), std::end(m_found.taken),
                                  [](int group) { return group < 0; });
    if (none && m_candidates.isEmpty()) {
        outcome = Outcome::failure(whyNoFrame());
    } else if (none) {
        outcome.failures
            << FolderContents::tr("no frames are named as I1, I0 or dark in %1").arg(m_found.path);
    } else if (m_found.group(FrameKind::I1) == nullptr) {
        outcome.warnings << FolderContents::tr("no I1 frames in %1").arg(m_found.path);
    }
    if (!m_listing.closed.isEmpty() && !m_listing.closed.contains(m_found.path)) {
        outcome.warnings
            << FolderContents::tr("may not be read: %1").arg(m_listing.closed.join(", "));
    }
    if (!rest.isEmpty()) {
        const QString text = FolderContents::tr("frames not taken: %1").arg(rest.join(", "));
        (m_found.group(FrameKind::I1) == nullptr ? outcome.warnings : outcome.notes) << text;
    }
    if (!m_others.isEmpty()) {
        outcome.notes
            << FolderContents::tr("neither frames nor spectra: %1").arg(filesText(m_others));
    }
}

}  // namespace

bool isFrameName(const QString& file) {
    const QString suffix = QFileInfo(file).suffix().toLower();
    const auto& readers = frameReaders();
    return std::any_of(readers.begin(), readers.end(), [&suffix](const FrameReader& reader) {
        return reader.suffixes.contains(suffix);
    });
}

const FrameGroup* FolderContents::group(FrameKind kind) const {
    const int i = taken[static_cast<int>(kind)];
    return i < 0 || i >= groups.size() ? nullptr : &groups[i];
}

FolderContents contentsOf(const FolderListing& listing, const NamePattern names[2]) {
    return Finder(listing, names).find();
}

void orderByEnergy(FrameGroup* group, const NamePattern& names) {
    const QRegularExpression pattern(names.pattern);
    QVector<QPair<double, QString>> ordered;
    for (const QString& file : group->files) {
        if (const auto number = numberFromName(file, pattern)) {
            ordered.append({*number * names.factor(), file});
        }
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    group->lowest = ordered.isEmpty() ? 0.0 : ordered.first().first;
    group->highest = ordered.isEmpty() ? 0.0 : ordered.last().first;
    for (int i = 0; ordered.size() == group->files.size() && i < ordered.size(); ++i) {
        group->files[i] = ordered[i].second;
    }
}

QString countText(int files) {
    return files == 1 ? FolderContents::tr("1 file") : FolderContents::tr("%1 files").arg(files);
}

QString energiesText(double lowest, double highest) {
    const auto text = [](double energy) { return QString::number(energy, 'f', 1); };
    return lowest == highest ? FolderContents::tr("%1 eV").arg(text(lowest))
                             : FolderContents::tr("%1 to %2 eV").arg(text(lowest), text(highest));
}

QString filesText(const QStringList& files) {
    const QString first = QFileInfo(files.value(0)).fileName();
    return files.size() < 2
               ? first
               : FolderContents::tr("%1 and %n more", nullptr, files.size() - 1).arg(first);
}
