#include "fitting/ResultKinds.h"

#include <QtGlobal>

const std::array<ResultKind, 6> ResultKinds{{
    {ResultId::DMut, "DMut", QT_TRANSLATE_NOOP("ResultKind", "Edge jump due to the reference"),
     "mu-t", ResultScale::DMut},
    {ResultId::Ratio, "Ratio", QT_TRANSLATE_NOOP("ResultKind", "Share of the reference"), "share",
     ResultScale::Ratio},
    {ResultId::RaDmut, "dmut", QT_TRANSLATE_NOOP("ResultKind", "Edge jump"), "mu-t",
     ResultScale::DMut},
    {ResultId::RaRest, "rest", QT_TRANSLATE_NOOP("ResultKind", "Residual absorption"), "mu-t",
     ResultScale::Own},
    {ResultId::RaRatio, "ratio",
     QT_TRANSLATE_NOOP("ResultKind", "Share of the residual absorption"), "share",
     ResultScale::Ratio},
    {ResultId::Shift, "E-shift", QT_TRANSLATE_NOOP("ResultKind", "Energy shift"), "eV",
     ResultScale::Own},
}};
