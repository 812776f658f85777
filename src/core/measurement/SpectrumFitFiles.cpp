// What is written of the fit of a spectrum file.

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <cmath>

#include "base/Numbers.h"
#include "files/FileNames.h"
#include "measurement/Origin.h"
#include "measurement/PlotSaving.h"
#include "measurement/SettingWords.h"
#include "measurement/SpectrumFit.h"
#include "measurement/Writing.h"
#include "output/ColumnTable.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SpectrumFit)
};

QString exact(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString found(double value) {
    return QString::number(value, 'g', 12);
}

/// The lines above the columns.
class Head {
  public:
    explicit Head(const SpectrumFit& fit)
        : m_fit(fit), m_folder(QFileInfo(fit.sample.path).absolutePath()) {
        addRule();
        addSample();
        for (const SpectrumFit::Part& part : fit.parts) {
            addPart(part);
        }
        addNumbers();
    }
    const QVector<HeaderLine>& lines() const { return m_lines; }

  private:
    void add(const QString& name, const QString& value) { m_lines.append({name, value}); }
    void addFile(const QString& name, const FileInput& file) {
        add(name, relativeTo(m_folder, file.path));
        add(name + QStringLiteral(" sha256"), QString::fromLatin1(file.sha256));
    }
    void addRule();
    void addSample();
    void addPart(const SpectrumFit::Part& part);
    void addNumbers();

    const SpectrumFit& m_fit;
    QString m_folder;
    QVector<HeaderLine> m_lines;
};

void Head::addRule() {
    add(QStringLiteral("program"), programName());
    addFile(QStringLiteral("sample"), m_fit.sample);
    const Inputs& in = m_fit.inputs;
    add(QStringLiteral("method"),
        in.method == LinearFit::Mlcf ? QStringLiteral("MLCF") : QStringLiteral("LCF"));
    add(QStringLiteral("background"), backgroundWord(in.background));
    if (in.method == LinearFit::Lcf) {
        const bool isEnergy = in.e0.kind == EdgeChoice::Kind::Energy;
        add(QStringLiteral("E0"), edgeWord(in.e0) + QLatin1String(isEnergy ? " eV" : ""));
    }
    const BackgroundRanges& r = in.ranges;
    add(QStringLiteral("background ranges"),
        QStringLiteral("%1 %2 %3 %4 eV")
            .arg(fieldText(r.preStart), fieldText(r.preEnd), fieldText(r.postStart),
                 fieldText(r.postEnd)));
    add(QStringLiteral("reference scale"), scaleWord(in.referenceScale));
    add(QStringLiteral("constraints"), constraintsWord(in.constraints));
}

void Head::addSample() {
    add(QStringLiteral("sample E0"), found(m_fit.e0) + QStringLiteral(" eV"));
    add(QStringLiteral("sample midE"), found(m_fit.midE) + QStringLiteral(" eV"));
    add(QStringLiteral("sample edge jump"), found(m_fit.edgeJump));
}

void Head::addPart(const SpectrumFit::Part& part) {
    const QString key = QStringLiteral("reference %1").arg(part.reference);
    addFile(key, part.input.file);
    add(key + QStringLiteral(" shift"), exact(part.input.deltaE) + QStringLiteral(" eV"));
    add(key + QStringLiteral(" background"), backgroundWord(part.input.background));
    add(key + QStringLiteral(" share"), found(part.share));
    add(key + QStringLiteral(" share error"), found(part.shareError));
    add(key + QStringLiteral(" edge jump"), found(part.jump));
    add(key + QStringLiteral(" edge jump error"), found(part.jumpError));
}

void Head::addNumbers() {
    add(QStringLiteral("sum of shares"), found(m_fit.sum));
    add(QStringLiteral("total edge jump"), found(m_fit.totalJump));
    add(QStringLiteral("total edge jump error"), found(m_fit.totalJumpError));
    add(QStringLiteral("R"), found(m_fit.r));
    add(QStringLiteral("sigma"), found(m_fit.sigma));
    add(QStringLiteral("degrees of freedom"), QString::number(m_fit.freedom));
    add(QStringLiteral("range used"),
        QStringLiteral("%1 %2 eV")
            .arg(exact(m_fit.energies.front()), exact(m_fit.energies.back())));
    add(QStringLiteral("energies used"),
        QStringLiteral("%1 of %2").arg(m_fit.energies.size()).arg(m_fit.energiesOfAll));
}

ColumnTable tableOf(const SpectrumFit& fit) {
    ColumnTable table;
    table.head = Head(fit).lines();
    table.names << QStringLiteral("energy") << QStringLiteral("sample") << QStringLiteral("fit")
                << QStringLiteral("difference");
    std::vector<double> difference;
    for (std::size_t i = 0; i < fit.fitted.size(); ++i) {
        difference.push_back(fit.compared[i] - fit.fitted[i]);
    }
    table.columns = {fit.energies, fit.compared, fit.fitted, difference};
    if (!fit.line.empty()) {
        table.names << QStringLiteral("line");
        table.columns.push_back(fit.line);
    }
    for (const SpectrumFit::Part& part : fit.parts) {
        table.names << QStringLiteral("reference_%1").arg(part.reference);
        table.columns.push_back(part.contribution);
    }
    return table;
}

/// What neither table nor plot may replace, beside the measurement's own files: its references may
/// be others by now.
QStringList filesOf(const SpectrumFit& fit) {
    QStringList files{fit.sample.path};
    for (const SpectrumFit::Part& part : fit.parts) {
        files << part.input.file.path;
    }
    return files;
}

QString withError(double value, double error) {
    return roundedPair(value, error).text().replace(QChar(0xb1), QStringLiteral("+-"));
}

/// What was found, for those who do not open the table.
QStringList notesOf(const SpectrumFit& fit) {
    QStringList notes;
    for (const SpectrumFit::Part& part : fit.parts) {
        notes << Texts::tr("%1: fraction %2, edge jump %3")
                     .arg(QFileInfo(part.input.file.name).fileName(),
                          withError(part.share, part.shareError),
                          withError(part.jump, part.jumpError));
    }
    return notes << Texts::tr("sum %1, R %2, %3 of %4 energies, %5 to %6 eV")
                        .arg(fit.sum, 0, 'f', 4)
                        .arg(fit.r, 0, 'g', 4)
                        .arg(fit.energies.size())
                        .arg(fit.energiesOfAll)
                        .arg(fit.energies.front(), 0, 'f', 1)
                        .arg(fit.energies.back(), 0, 'f', 1);
}

Outcome noFit() {
    return Outcome::failure(Texts::tr("there is no fit to save"));
}

bool areOne(const QString& a, const QString& b) {
    const auto absolute = [](const QString& name) {
        return QDir::cleanPath(QFileInfo(name).absoluteFilePath());
    };
    return absolute(a) == absolute(b) ||
           (QFileInfo::exists(a) &&
            QFileInfo(a).canonicalFilePath() == QFileInfo(b).canonicalFilePath());
}

}  // namespace

Outcome saveTable(const Measurement& measurement, const SpectrumFit& fit, const QString& fileName) {
    if (!fit.hasFit()) {
        return noFit();
    }
    return writeFile(
        measurement, fileName, [&] { return writeColumnTable(fileName, tableOf(fit)); },
        {Rehearsal::Kind::Spectrum, {}, fit.energies}, filesOf(fit));
}

Outcome savePlot(const Measurement& measurement, const SpectrumFit& fit, const QString& fileName) {
    return fit.hasFit() ? writePlotFile(measurement, fileName, plotOf(fit), filesOf(fit)) : noFit();
}

Outcome fitSpectrumFile(const Measurement& measurement, const QString& sample, const QString& table,
                        const QString& plot) {
    const SpectrumFit fit = fitSpectrum(measurement, sample);
    Outcome outcome = fit.outcome;
    if (!plot.isEmpty() && areOne(table, plot)) {
        outcome.failures << Texts::tr("table and plot would be one file: %1").arg(plot);
    } else if (!plot.isEmpty()) {
        outcome += judgePlotFile(measurement, plot, filesOf(fit));
    }
    if (outcome.failed()) {
        return outcome;
    }
    outcome += writeTogether([&] {
        Outcome files = saveTable(measurement, fit, table);
        if (!plot.isEmpty() && !files.failed()) {
            files += savePlot(measurement, fit, plot);
        }
        return files;
    });
    if (!fit.isStandIn && !outcome.failed()) {
        outcome.notes += notesOf(fit);
    }
    return outcome;
}
