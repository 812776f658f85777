#include "SampleFiles.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "RandomCounts.h"

namespace samples {

namespace fs = std::filesystem;

namespace {

[[gnu::format(printf, 1, 2)]] std::string format(const char* form, ...) {
    char text[160];
    va_list args;
    va_start(args, form);
    std::vsnprintf(text, sizeof text, form, args);
    va_end(args);
    return text;
}

struct ScanBlock {
    double first;  // eV
    double last;   // eV
    double step;   // eV
};

constexpr ScanBlock standardBlocks[] = {
    {6990.0, 7100.0, 5.0}, {7100.0, 7145.0, 0.3}, {7145.0, 7200.0, 1.0}, {7200.0, 7420.0, 4.0}};

int pointsOf(const ScanBlock& block) {
    return static_cast<int>(std::lround((block.last - block.first) / block.step));
}

void writeTable(const fs::path& fileName, const char* name, const Map& map) {
    std::string text = format("# %s\n# width = %d\n# height = %d\n", name, map.width, map.height);
    for (int y = 0; y < map.height; ++y) {
        for (int x = 0; x < map.width; ++x) {
            text += format(x == 0 ? "%.6g" : " %.6g", map.at(x, y));
        }
        text += '\n';
    }
    writeTextFile(fileName, text);
}

}  // namespace

void writeTextFile(const fs::path& fileName, const std::string& text) {
    const fs::path unfinished = fileName.string() + ".part";
    {
        std::ofstream out(unfinished, std::ios::binary);
        out << text;
        out.flush();
        if (!out) {
            throw std::runtime_error("can not write " + fileName.string());
        }
    }
    fs::rename(unfinished, fileName);
}

void writeReferences(const fs::path& dir, const AbsorptionModel& model,
                     const std::vector<double>& energies) {
    fs::create_directories(dir);
    for (int s = 0; s < speciesCount; ++s) {
        std::string text = "# " + speciesName(s) + " powder, transmission\n# energy/eV mu-t\n";
        for (const double energy : energies) {
            text += format("%10.2f %12.7f\n", energy, model.value(s, energy));
        }
        writeTextFile(dir / (speciesName(s) + ".dat"), text);
    }
}

void writeStandard(const fs::path& dir, const AbsorptionModel& model, bool noisy) {
    constexpr double hc = 12398.424360387684;  // eV A
    constexpr double spacing = 3.13551;        // A, Si(111)
    constexpr double degrees = 180.0 / 3.14159265358979323846;

    int points = 0;
    std::string blocks;
    for (std::size_t i = 0; i < std::size(standardBlocks); ++i) {
        const ScanBlock& block = standardBlocks[i];
        points += pointsOf(block);
        blocks += format("%6zu %14.2f %9.2f %12.2f %10.2f %9d\n", i + 1, block.first, block.last,
                         block.step, 1.0, pointsOf(block));
    }
    const auto angleOf = [&](double energy) {
        return std::asin(hc / energy / (2.0 * spacing)) * degrees;
    };
    std::string text = "  9809     TARNWICK   SAMPLE\n";
    text += " fe-foil.001  24.06.11 03:12 - 24.06.11 03:24\n";
    text += " Fe foil, 4 um, energy standard\n";
    text += " Ring :   2.5 GeV   449.6 mA -  447.9 mA\n";
    text += format(" Mono :   SI(111)       D=  %.5f A    Initial angle= %8.5f deg\n", spacing,
                   angleOf(standardBlocks[0].first));
    text += format(" SAMPLE    Transmission( 2)   Repetition=  1     Points= %4d\n", points);
    text += format(" Param file : A:fek        energy axis(2)     Block = %4zu\n\n",
                   std::size(standardBlocks));
    text += " Block      Init-Eng  final-Eng      Step/eV     Time/s       Num\n";
    text += blocks;
    text += " Ortec(-1)     NDCH = 3\n";
    text += "  Angle(c)  Angle(o)    time/s         2         3\n";
    text += "      Mode         0         0         1         2\n";
    text += "    Offset         0         0   812.400   655.120\n";

    RandomCounts random(9809);
    for (const ScanBlock& block : standardBlocks) {
        for (int i = 0; i < pointsOf(block); ++i) {
            const double energy = block.first + i * block.step;
            const double incident = 1.6e6 * std::exp(-(energy - 7000.0) / 9000.0);
            const double passed = incident * std::exp(-model.value(Metal, energy));
            const double angle = angleOf(energy);
            const auto count = [&](double mean) {
                return noisy ? static_cast<double>(random.poisson(mean)) : std::round(mean);
            };
            const double i0 = count(incident);
            const double i1 = count(passed);
            text += format("%10.5f%10.5f%10.2f%10.0f%10.0f\n", angle, angle, 1.0, i0, i1);
        }
    }
    fs::create_directories(dir);
    writeTextFile(dir / "fe-foil.dat", text);
}

void writeTruth(const fs::path& dir, const Phantom& phantom) {
    fs::create_directories(dir);
    std::string means = "# mean fraction inside the sample, weighted by pixel\n";
    for (int s = 0; s < speciesCount; ++s) {
        const Map& map = phantom.fractions[static_cast<std::size_t>(s)];
        writeTable(dir / (speciesName(s) + ".txt"), "fraction of the iron atoms", map);
        double sum = 0.0;
        int pixels = 0;
        for (std::size_t i = 0; i < map.values.size(); ++i) {
            if (phantom.thickness.values[i] > 0.0) {
                sum += map.values[i];
                ++pixels;
            }
        }
        means += format("%-8s %.5f\n", speciesName(s).c_str(), pixels > 0 ? sum / pixels : 0.0);
    }
    writeTable(dir / "thickness.txt", "edge jump of mu-t", phantom.thickness);
    writeTable(dir / "energy-shift.txt",
               "energy at which the edge appears, minus its true one (eV)", phantom.energyShift);
    writeTextFile(dir / "fractions.txt", means);
}

}  // namespace samples
