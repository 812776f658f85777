#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "maps/BinRaster.h"
#include "measurement/Outcome.h"
#include "measurement/Reference.h"

struct Run;

// What is to be said of an analysis of the area: before it from the energies and the spectra alone,
// without a count, and after it from what its bins have shown.

/// Of a fit. Energies are those of the frames in eV, ascending, without the shifts of the energy
/// map: these differ from bin to bin by less than makes a fit good or bad. Those of a reference
/// count less its offset, as in the fit.
///
/// It fails without a reference in use, and when fewer energies lie inside all references in use
/// than two more than it has unknowns (the references; in MLCF a constant and a slope, too). It
/// warns when less than 90 % of the energies do, of references with an edgeFault(), of those in use
/// that hold no spectrum, and of each two that cannot be told apart.
///
/// Two references a and b cannot be told apart when the condition number of the matrix of their
/// columns in the fit, each scaled to length 1, is 100 or more: sqrt((1 + |c|) / (1 - |c|)) with c
/// the cosine of the angle between them. In MLCF the angle is that of what is left of the columns
/// when constant and slope have been fitted to them. Such references differ by less than 2 % of
/// themselves, and noise in the spectra comes out at least fifty-fold in their shares. The scaling
/// and the order of the limit are those of D. A. Belsley, E. Kuh, R. E. Welsch, Regression
/// Diagnostics, Wiley 1980, ch. 3: 30 to 100 for moderate to strong dependencies.
Outcome judgeFit(const std::vector<double>& energies,
                 const std::vector<std::unique_ptr<Reference>>& references, const FitRule& rule);

/// Of a fit with the energy shifts of a map (eV): how many bins are left with fewer energies inside
/// all references in use than the fit needs. Warns of some, fails for all.
Outcome judgeShiftedFit(const std::vector<double>& energies,
                        const std::vector<std::unique_ptr<Reference>>& references,
                        LinearFit::Method method, const BinRaster& raster,
                        const std::function<double(int x, int y)>& shiftAt);

/// The same of a fit of a single spectrum with these energies, with the rest of the settings that
/// it goes by: more references than constraints are for, another background than the sample's.
Outcome judgeSpectrumFit(const std::vector<double>& energies,
                         const std::vector<std::unique_ptr<Reference>>& references,
                         const Settings& settings);

/// Of residual absorption at an energy (eV): warns when it lies outside those of the frames.
Outcome judgeResidual(const std::vector<double>& energies, double at);

/// Of the difference of two energies (eV): fails for equal ones and for those outside the frames'.
Outcome judgeDifference(const std::vector<double>& energies, double from, double to);

/// Of work that is to begin: judgeFit(), judgeResidual() or nothing. Notes references of a fit that
/// have another background than the image.
Outcome judgeBefore(Work work, const std::vector<double>& energies,
                    const std::vector<std::unique_ptr<Reference>>& references,
                    const Settings& settings);

/// Of a run that has come to its end: what was said before it, and how many of its bins have no
/// counts at some energy. One debug line tells how many have an edge jump of 0.
Outcome judgeAfter(const Run& run);
