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

/// In the row of each stack, whose own name is said before.
constexpr SpokenName RowNames[] = {
    {"Selected", QT_TRANSLATE_NOOP("SpokenNames", "Files of the stack")},
    {"EngPattern", QT_TRANSLATE_NOOP("SpokenNames", "Pattern of the energy in the names")},
    {"SelectUnit", QT_TRANSLATE_NOOP("SpokenNames", "Unit of the energy")}};

template <std::size_t Count>
void give(const SpokenName (&names)[Count], const QWidget* parent) {
    for (const SpokenName& spoken : names) {
        if (auto* control = parent->findChild<QWidget*>(QLatin1String(spoken.control))) {
            control->setAccessibleName(SpokenNames::tr(spoken.name));
        }
    }
}

}  // namespace

void nameControls(QWidget* window) {
    give(Names, window);
    for (const char* row : {"SelectI1Files", "SelectI0Files"}) {
        give(RowNames, window->findChild<QWidget*>(QLatin1String(row)));
    }
}
