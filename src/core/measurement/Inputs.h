#pragma once

#include <QByteArray>
#include <QSize>
#include <QStringList>
#include <QVector>
#include <memory>
#include <vector>

#include "files/FileStamp.h"
#include "measurement/Settings.h"
#include "measurement/Stack.h"

// Everything that a run works on, as it was at its start: what a result was made from. Values, to
// be copied and compared; nothing here follows the measurement.

/// What works for a while in the background.
enum class Work {
    None,
    LoadI1,
    LoadI0,
    LoadDark,
    LoadFolder,  ///< several of these at once
    Calibrate,
    Fit,
    Residual,
    Difference,
    Deglitch  ///< or smoothing of the energy map
};

/// Reads frames.
constexpr bool isLoad(Work work) {
    return work == Work::LoadI1 || work == Work::LoadI0 || work == Work::LoadDark ||
           work == Work::LoadFolder;
}

/// A text file that was read as a whole.
struct FileInput {
    QString name;  ///< as it was given; empty: none
    QString path;  ///< absolute
    QByteArray sha256;
    quint64 revision = 0;
};

struct StackInputs {
    QVector<Stack::File> files;
    quint64 revision = 0;
};

struct ReferenceInput {
    FileInput file;
    bool used = false;
    bool takesPart = false;  ///< in use and with a spectrum
    double deltaE = 0.0;     ///< energy offset in eV
    int background = 0;
};

/// Whether a fit finds the same with both; of references that take part.
bool sameReference(const ReferenceInput& a, const ReferenceInput& b);

struct MapInput;

struct Inputs {
    StackInputs i1;
    StackInputs i0;
    QSize size;                     ///< of the images
    QStringList dark;               ///< absolute paths
    QVector<FileStamp> darkStamps;  ///< of these, when they were read
    quint64 darkRevision = 0;
    int halfWidth = 0;
    int halfHeight = 0;
    Area area;
    int background = 0;
    std::vector<ReferenceInput> references;
    EdgeChoice e0;
    BackgroundRanges ranges;
    LinearFit::Method method = LinearFit::Lcf;
    FitRule::ReferenceScale referenceScale = FitRule::ReferenceScale::Jump;
    FitRule::Constraints constraints = FitRule::Constraints::None;
    bool errorMaps = false;
    double differenceFrom = 0.0;
    double differenceTo = 0.0;
    double raEnergy = 0.0;
    double raFactor = 0.0;
    FileInput standard;
    int standardBackground = 0;
    int crystal = 0;
    QString edgeEnergy;
    std::shared_ptr<const MapInput> map;  ///< null: no energy shift
};

/// Where an energy-shift map comes from: a calibration of these inputs, or a file.
struct MapInput {
    std::shared_ptr<const Inputs> calibration;  ///< null for a map from a file
    FileInput file;
    QString edgeEnergy;  ///< of the panel when the file was read
    int smoothed = 0;    ///< how many times
    quint64 revision = 0;
};

/// Whether this work goes by one E0 for all bins. Not MLCF, whose sample needs no lines.
bool hasCommonE0(const Inputs& inputs, Work work);
/// Whether the mean spectrum of the area would be the same.
bool sameMeanSpectrum(const Inputs& a, const Inputs& b);

/// How the spectra of the image are normalised, and how they are fitted; without the E0 of the mean
/// spectrum, which is found by a run.
Normalisation sampleRule(const Inputs& inputs);
FitRule fitRule(const Inputs& inputs);

/// What differs of the inputs that this work goes by, in the order in which a user would look for
/// it; None: nothing. Before: a later run that was to make it failed.
enum class Difference {
    None,
    Frames,
    Dark,
    Map,
    References,
    Bins,
    Area,
    Background,
    Edge,
    Ranges,
    Settings,
    Before
};
Difference difference(const Inputs& a, const Inputs& b, Work work);
