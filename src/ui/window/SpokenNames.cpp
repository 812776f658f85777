#include "window/SpokenNames.h"

#include <QCoreApplication>
#include <QWidget>

namespace {

class SpokenNames {
    Q_DECLARE_TR_FUNCTIONS(SpokenNames)
};

struct SpokenName {
    const char* control;
    const char* name;
};

constexpr SpokenName Names[] = {
    {"SelectI1Files", QT_TRANSLATE_NOOP("SpokenNames", "I1 data")},
    {"SelectI0Files", QT_TRANSLATE_NOOP("SpokenNames", "I0 data")},
    {"dispA", QT_TRANSLATE_NOOP("SpokenNames", "Image")},
    {"Value", QT_TRANSLATE_NOOP("SpokenNames", "Value at the position")},
    {"SeekBar", QT_TRANSLATE_NOOP("SpokenNames", "Frame shown")},
    {"Prev", QT_TRANSLATE_NOOP("SpokenNames", "Previous frame")},
    {"Next", QT_TRANSLATE_NOOP("SpokenNames", "Next frame")},
    {"HCross", QT_TRANSLATE_NOOP("SpokenNames", "Cross section along the row")},
    {"VCross", QT_TRANSLATE_NOOP("SpokenNames", "Cross section along the column")},
    {"HWidth", QT_TRANSLATE_NOOP("SpokenNames", "Half width of the bin")},
    {"VWidth", QT_TRANSLATE_NOOP("SpokenNames", "Half height of the bin")},
    {"SaveDataCfgB", QT_TRANSLATE_NOOP("SpokenNames", "Form of saved data")},
    {"DeGlitchFactor", QT_TRANSLATE_NOOP("SpokenNames", "Factor of the deglitching")},
    {"DeGlitchRatio", QT_TRANSLATE_NOOP("SpokenNames", "Ratio of the deglitching")}};

}  // namespace

void nameControls(QWidget* window) {
    for (const SpokenName& spoken : Names) {
        if (auto* control = window->findChild<QWidget*>(QLatin1String(spoken.control))) {
            control->setAccessibleName(SpokenNames::tr(spoken.name));
        }
    }
}
