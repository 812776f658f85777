#include "batch/Record.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>
#include <vector>

#include "base/Globals.h"
#include "batch/BatchText.h"
#include "batch/BatchTexts.h"
#include "batch/CmdLine.h"
#include "batch/CommandTables.h"
#include "batch/RecordWriter.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"
#include "measurement/Display.h"
#include "measurement/FitJudgement.h"
#include "measurement/Origin.h"
#include "measurement/Writing.h"
#include "spectra/Units.h"

namespace {

constexpr int Version = 1;
const QLatin1String FirstLine("Tarnwick record ");
const QLatin1String Digest("sha256 ");

/// The lines behind a remark that says what they are, which files they need and what is left out.
RecordLines withRemark(const RecordWriter& writer, const QStringList& leftOut = {}) {
    if (writer.failure()) {
        return *writer.failure();
    }
    QStringList lines{QStringLiteral(":rem_start"), FirstLine + QString::number(Version)};
    for (const auto& digest : writer.digests()) {
        // A line that ends in a backslash would take the next one with it.
        if (!digest.first.endsWith(QLatin1Char('\\'))) {
            lines << Digest + QString::fromLatin1(digest.second) + QLatin1Char(' ') + digest.first;
        }
    }
    lines += leftOut;
    lines << QStringLiteral(":rem_end");
    return {lines + writer.lines(), {}, {}};
}

void execLine(RecordWriter& writer, Work work) {
    if (work == Work::Fit) {
        writer.line(QStringLiteral("analyzer_exec_LCF"));
    } else if (work == Work::Residual) {
        writer.line(QStringLiteral("analyzer_exec_ra"));
    }
}

void execDifference(RecordWriter& writer, const Inputs& in) {
    const auto exact = [](double e) {
        return QString::number(e, 'g', QLocale::FloatingPointShortest);
    };
    writer.line(QStringLiteral("analyzer_exec_difference"),
                {exact(in.differenceFrom), exact(in.differenceTo)});
}

/// The energy map is made by what it is in force for, or by itself.
void makeAgain(RecordWriter& writer, const Measurement& measurement, const Result& result) {
    if (result.id == ResultId::Shift) {
        writer.map(measurement.mapInput());
        return;
    }
    writer.inputs(result.run->inputs, result.run->work);
    if (result.run->work == Work::Fit && !result.run->inputs.errorMaps) {
        writer.mask(measurement.settings());  // behind such a fit no mask is taken
    }
    if (result.run->work == Work::Difference) {
        execDifference(writer, result.run->inputs);
    } else {
        execLine(writer, result.run->work);
    }
}

/// The processed maps of the other references, which a composite shows, too.
void showOthers(RecordWriter& writer, const Measurement& measurement, const Result& result) {
    for (int i = 0; i < measurement.referenceCount(); ++i) {
        const Result* other = measurement.find(result.id, i);
        if (other != &result && other->image.showsProc() && other->tookPart()) {
            writer.show(*other);
        }
    }
}

/// Which version wrote a record; 0 for any other batch.
int recordVersion(const QStringList& lines) {
    const bool isRecord = lines.size() > 1 &&
                          lines.at(0).trimmed() == QLatin1String(":rem_start") &&
                          lines.at(1).startsWith(FirstLine);
    return isRecord ? std::max(1, lines.at(1).mid(FirstLine.size()).trimmed().toInt()) : 0;
}

QString nameOf(const Result& result) {
    const ReferenceInput* reference = result.referenceInput();
    const QString kind = QString::fromLatin1(result.kind().title);
    return reference == nullptr
               ? kind
               : kind + QLatin1Char(' ') + QFileInfo(reference->file.name).fileName();
}

QString whyLeftOut(const Measurement& measurement, const Result& result) {
    if (result.id == ResultId::Shift) {
        return QString();  // in force, whatever it was made of
    }
    if (!result.run || result.run->state != Run::State::Complete) {
        return stateOf(result);
    }
    return QString::fromLatin1(differenceText(measurement.differenceOf(result)));
}

/// All current results, one after another; what is left out is returned.
QStringList makeCurrent(RecordWriter& writer, const Measurement& measurement) {
    QStringList leftOut;
    const Run* last = nullptr;
    for (const Result* result : measurement.results()) {
        const QString why = whyLeftOut(measurement, *result);
        if (!why.isEmpty()) {
            leftOut << QStringLiteral("left out: %1, %2").arg(nameOf(*result), why);
            continue;
        }
        if (result->id == ResultId::Shift || result->run.get() != last) {
            makeAgain(writer, measurement, *result);
            last = result->id == ResultId::Shift ? nullptr : result->run.get();
        }
        if (result->image.showsProc()) {
            writer.show(*result);
        }
    }
    return leftOut;
}

/// Whether frames have the energies of a difference between them; without frames any will do.
bool holds(const StackInputs& frames, const FrameView& view) {
    std::vector<double> energies;
    for (const Stack::File& file : frames.files) {
        energies.push_back(file.energy);
    }
    std::sort(energies.begin(), energies.end());
    if (energies.empty() || !(view.from > 0.0)) {
        return true;
    }
    const bool isLowest = view.from == energies.front();
    const double other = isLowest ? energies.back() : energies.front();
    return !judgeDifference(energies, view.from, view.to.value_or(other)).failed();
}

/// A difference that was set before these frames came, and is none of theirs, is no line: it would
/// fail.
void presentFrameView(RecordWriter& w, const Measurement& m, Settings s) {
    if (!holds(m.inputs().i1, s.frameView)) {
        const FrameView::Kind kind = s.frameView.kind;
        s.frameView = FrameView();
        s.frameView.kind = kind == FrameView::Kind::Absorption ? kind : FrameView::Kind::Counts;
    }
    w.frameView(s);
}

void presentSettings(RecordWriter& w, const Measurement& m) {
    const Settings& s = m.settings();
    const auto text = [](int n) { return QString::number(n); };
    const Inputs in = m.inputs();
    w.inputs(in, Work::Residual);
    w.map(in.map);
    w.frames(in);  // a map from a file is read without images
    constexpr int last = static_cast<int>(CrystalTable.size()) - 1;
    w.put(QStringLiteral("crystal"), QStringLiteral("calib_set_crystal"),
          {QString::fromLatin1(
              CrystalTable[static_cast<std::size_t>(toClampedInt(s.crystal, 0, last))].name)});
    w.standard(in.standard, in.standardBackground);
    w.put(QStringLiteral("edge"), QStringLiteral("calib_set_edge_eV"),
          edgeEnergyArgs(s.edgeEnergy));
    w.inputs(in, Work::Fit);
    w.mask(s);
    for (const ResultId id : {ResultId::DMut, ResultId::Ratio}) {
        w.scaleOf(resultKind(id), s);
    }
    const bool isTiff = dataForm(s.dataForm).isTiff;
    w.saveForm(s, isTiff ? DataForm::Text : DataForm::Tiff);
    w.saveForm(s, isTiff ? DataForm::Tiff : DataForm::Text);
    w.put(QStringLiteral("corrected"), QStringLiteral("set_spectra_corrected"),
          {s.correctedSpectra ? QStringLiteral("1") : QStringLiteral("0")});
    w.put(QStringLiteral("each row"), QStringLiteral("analyzer_set_disp_on_time"),
          {s.showsEachRow ? QStringLiteral("1") : QStringLiteral("0")});
    w.viewRange(s.viewRange);
    presentFrameView(w, m, s);
    w.views(s.views);
    w.put(QStringLiteral("axes"), QStringLiteral("set_plot_axes"),
          {text(s.plotOrdinate),
           QString::fromLatin1(UnitTable[static_cast<std::size_t>(s.plotAbscissa)].name)});
    if (s.selected >= 0) {
        w.put(QStringLiteral("selected"), QStringLiteral("analyzer_select_image"),
              {text(s.selected)});
    }
    w.put(QStringLiteral("type"), QStringLiteral("analyzer_select_image_type"),
          {text(s.resultType)});
    if (const Result* named = s.namedKind ? m.selectedResult() : nullptr) {
        w.show(*named);
    }
    w.put(QStringLiteral("display"), QStringLiteral("select_disp_image"),
          {text(static_cast<int>(s.shown))});
    const Stack& stack = m.stack(s.shown == Shown::I0 ? StackId::I0 : StackId::I1);
    const int newest = stack.id() == StackId::I1 ? stack.size() - 1 : 0;
    if ((s.shown == Shown::I1 || s.shown == Shown::I0) && m.frame() >= 0 && m.frame() != newest) {
        w.line(QStringLiteral("show_frame"), {text(m.frame())});
    }
    const QPoint at(toPixel(m.position().x()), toPixel(m.position().y()));
    // A rectangle of no image, of -1 x -1 pixels, holds (-1, -1).
    if (!m.imageSize().isEmpty() && QRect(QPoint(0, 0), m.imageSize()).contains(at)) {
        w.line(QStringLiteral("move_position"), {text(at.x()), text(at.y())});
    }
}

}  // namespace

RecordLines recordOf(const Measurement& measurement, const Result& result, const QString& savedBy) {
    Inputs inputs = result.run ? result.run->inputs : Inputs();
    if (result.id == ResultId::Shift) {
        inputs.map = measurement.mapInput();
        if (!inputs.map) {
            return RecordLines::none(QT_TRANSLATE_NOOP("Record", "there is no energy-shift map"));
        }
    } else if (!result.run) {
        return RecordLines::none(QT_TRANSLATE_NOOP("Record", "nothing has been analysed"));
    }
    RecordWriter writer(originFolder(inputs));
    makeAgain(writer, measurement, result);
    if (savedBy == QLatin1String("calib_save_map")) {
        return withRemark(writer);  // the map itself, whatever is on display
    }
    if (savedBy == QLatin1String("save_composite")) {
        showOthers(writer, measurement, result);
    }
    writer.show(result);
    const bool isOfFit = result.run && result.run->work == Work::Fit;
    if (savedBy == QLatin1String("save_data_as_tiff")) {
        if (isOfFit && measurement.settings().savesMasked) {
            writer.mask(measurement.settings());
        }
        writer.saveForm(measurement.settings(), measurement.settings().dataForm);
    } else {
        if (isOfFit) {
            writer.mask(measurement.settings());
        }
        writer.scaleOf(result.kind(), measurement.settings());
        writer.view(result.id, measurement.settings().views);
    }
    return withRemark(writer);
}

RecordLines recordOf(const Measurement& measurement) {
    RecordWriter writer(originFolder(measurement.inputs()));
    QStringList leftOut = makeCurrent(writer, measurement);
    presentSettings(writer, measurement);
    if (!holds(measurement.inputs().i1, measurement.settings().frameView)) {
        leftOut << QStringLiteral("left out: a difference of energies outside those of the frames");
    }
    return withRemark(writer, leftOut);
}

RecordLines recordOfResults(const Measurement& measurement) {
    RecordWriter writer(originFolder(measurement.inputs()));
    const QStringList leftOut = makeCurrent(writer, measurement);
    if (measurement.settings().mask > 0.0) {
        writer.mask(measurement.settings());
        writer.put(
            QStringLiteral("masked"), QStringLiteral("saveDataCfg_masked"),
            {measurement.settings().savesMasked ? QStringLiteral("1") : QStringLiteral("0")});
    }
    return writer.lines().isEmpty() && !writer.failure()
               ? RecordLines::none(QT_TRANSLATE_NOOP(
                     "Record", "the present inputs would make none of the results again"))
               : withRemark(writer, leftOut);
}

Outcome saveRecord(const Measurement& measurement, const QString& fileName) {
    const RecordLines record = recordOf(measurement);
    if (!record.whyNotInWindow.isEmpty()) {
        return Outcome::failure(record.whyNotInWindow);
    }
    const QByteArray text = (record.lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    const Outcome outcome = writeFile(measurement, fileName, [&] {
        WholeDevice file(fileName);
        return file.open() && file.write(text) == text.size() && file.putInPlace() &&
               noteSaved(fileName);
    });
    if (outcome.failed()) {
        return outcome;
    }
    for (const Result* result : measurement.results()) {
        if (result->run) {
            result->run->saved = true;
        }
    }
    return outcome;
}

Outcome aboutNewerRecord(const QStringList& lines) {
    if (recordVersion(lines) <= Version) {
        return {};
    }
    QStringList unknown;
    for (int i = lines.indexOf(QStringLiteral(":rem_end")) + 1; i < lines.size(); ++i) {
        const CmdLine cmd = CmdLine::parse(readLogicalLine(lines, &i));
        const bool isKnown = cmd.command.isEmpty() || controlId(cmd.command) != NoControl ||
                             commandId(cmd.command) != NoCommand;
        if (!isKnown && !unknown.contains(cmd.command)) {
            unknown << cmd.command;
        }
    }
    const QString known = unknown.isEmpty() ? Batch::tr("all its commands are known")
                                            : Batch::tr("not known: %1").arg(unknown.join(", "));
    return Outcome::warning(Batch::tr("the record is of a newer version; %1").arg(known));
}

QHash<QString, QByteArray> digestsInRecord(const QStringList& lines) {
    QHash<QString, QByteArray> digests;
    if (recordVersion(lines) == 0) {
        return digests;
    }
    for (const QString& line : lines.mid(2)) {
        if (line.trimmed() == QLatin1String(":rem_end")) {
            break;
        }
        const QString entry = line.startsWith(Digest) ? line.mid(Digest.size()) : QString();
        const int blank = entry.indexOf(QLatin1Char(' '));
        if (blank > 0) {
            digests.insert(QFileInfo(entry.mid(blank + 1)).absoluteFilePath(),
                           entry.left(blank).toLatin1());
        }
    }
    return digests;
}
