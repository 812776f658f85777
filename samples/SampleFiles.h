#pragma once

#include <filesystem>
#include <string>

#include "Measurement.h"

namespace samples {

// The text files beside the frames. All throw std::runtime_error when a file cannot be written.

// references/metal.dat, oxide2.dat, oxide3.dat: two columns, energy (eV) and mu-t.
void writeReferences(const std::filesystem::path& dir, const AbsorptionModel& model,
                     const std::vector<double>& energies);

// standard/fe-foil.dat: the metal in the 9809 format, monochromator angle and two counters per
// point.
void writeStandard(const std::filesystem::path& dir, const AbsorptionModel& model, bool noisy);

// truth/: one table per map (one line per image row), and fractions.txt, their means inside the
// sample.
void writeTruth(const std::filesystem::path& dir, const Phantom& phantom);

// Writes the text beside the file and renames it, so that the file is whole or absent.
void writeTextFile(const std::filesystem::path& fileName, const std::string& text);

}  // namespace samples
