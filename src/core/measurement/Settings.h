#pragma once

#include <QString>
#include <optional>

#include "fitting/LinearFit.h"
#include "fitting/ResultKinds.h"
#include "measurement/Area.h"
#include "measurement/DataForm.h"
#include "measurement/FrameView.h"
#include "measurement/MapView.h"
#include "output/ResultWriter.h"

// What a user chooses. Windows show these values and set them; batches and records speak of them.

/// The value that a field shows of a number: six significant digits.
inline QString fieldText(double value) {
    return QString::number(value, 'g', 6);
}
inline double inField(double value) {
    return fieldText(value).toDouble();
}

/// How energies are found in the names of a stack's files.
struct NamePattern {
    QString pattern = QStringLiteral("[\\d_]+eV");
    bool isKeV = false;  ///< unit of the number found; eV otherwise

    double factor() const { return isKeV ? 1000.0 : 1.0; }
    QString unit() const { return isKeV ? QStringLiteral("keV") : QStringLiteral("eV"); }
    bool operator==(const NamePattern& o) const { return pattern == o.pattern && isKeV == o.isKeV; }
};

/// Where E0 of the spectra of an image is, which their backgrounds are fitted around.
struct EdgeChoice {
    enum class Kind {
        Each,   ///< where each spectrum rises through half its height
        Mean,   ///< that of the mean spectrum of the area, for all
        Energy  ///< an energy, for all
    };
    Kind kind = Kind::Each;
    double energy = 0.0;  ///< in eV of the calibrated scale, with Kind::Energy

    bool operator==(const EdgeChoice& o) const { return kind == o.kind && energy == o.energy; }
};

/// The range of counts from black to white; each frame's own while it is not fixed.
struct ViewRange {
    bool fixed = false;
    double low = 0.0;
    double high = 1.0;

    bool operator==(const ViewRange& o) const {
        return fixed == o.fixed && low == o.low && high == o.high;
    }
};

/// What is on display; the ids of select_disp_image.
enum class Shown { I1 = 0, I0 = 1, Map = 2, Result = 3 };

struct Settings {
    NamePattern names[2];  ///< by StackId
    int halfWidth = 10;    ///< of a bin, in pixels; counts by magnitude
    int halfHeight = 10;
    Area area;

    int standardBackground = 0;  ///< XafsSpectrum::Background
    int targetBackground = 0;
    int crystal = 0;     ///< in CrystalTable
    QString edgeEnergy;  ///< eV, as typed

    EdgeChoice e0;
    BackgroundRanges ranges;  ///< of the image's, the references' and the standard's backgrounds

    LinearFit::Method method = LinearFit::Lcf;
    FitRule::ReferenceScale referenceScale = FitRule::ReferenceScale::Jump;
    FitRule::Constraints constraints = FitRule::Constraints::None;
    bool errorMaps = false;    ///< fits make counting errors and goodness of fit, too
    double mask = 0.0;         ///< blank where the total jump is below this times its error; 0: off
    bool savesMasked = false;  ///< blank in what is saved, too
    double differenceFrom = 0.0;  ///< eV
    double differenceTo = 0.0;
    double raEnergy = 8200.0;  ///< eV
    double raFactor = 1.0;

    bool fixedScale = false;
    double dMutMin = 0.0;
    double dMutMax = 1.0;
    double ratioMin = 0.0;
    double ratioMax = 1.0;

    double deglitchFactor = 2.0;
    double deglitchRatio = 0.1;

    DataForm dataForm = DataForm::Tiff;
    TiffOptions tiff;
    TableOptions table;
    bool correctedSpectra = true;  ///< energies of saved spectra less the energy correction

    Shown shown = Shown::I1;
    int selected = -1;   ///< the result chosen: references, then the three of RA; -1: none
    int resultType = 0;  ///< of a reference: 0 DMut, 1 Ratio
    /// The kind chosen in place of that of `selected` and `resultType`, which has no number; of a
    /// reference: of the one selected.
    std::optional<ResultId> namedKind;
    ViewRange viewRange;
    FrameView frameView;
    ViewRange absorptionRange;  ///< of mu-t, and of its difference, in place of counts
    ViewRange differenceRange;
    MapViews views;
    Composite composite;        ///< shown in place of the result chosen; off once another is
    int plotOrdinate = 2;       ///< SpectrumPlot::Ordinate
    int plotAbscissa = 0;       ///< in UnitTable
    bool showsEachRow = false;  ///< pictures of a fit are made anew after each row
};
