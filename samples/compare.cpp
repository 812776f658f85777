// tarnwick-compare: tells how well saved fraction maps agree with what is known about the sample.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "ResultTable.h"

namespace fs = std::filesystem;
using namespace samples;

namespace {

const char* const usage =
    "usage: tarnwick-compare TRUTHDIR [--max-mean X] [--max-rms X] SPECIES=TABLE...\n"
    "\n"
    "Compares fraction maps, saved as text tables \"x, y, value\" of the analysed points, with "
    "the\n"
    "known fractions in TRUTHDIR/SPECIES.txt and prints the errors over the bins inside the\n"
    "sample. Ends with 1 when a mean error or an rms error exceeds its limit or when a value is\n"
    "missing.\n";

struct Options {
    struct Pair {
        std::string species;
        fs::path table;
    };
    fs::path truth;
    double maxMean = 1e300;
    double maxRms = 1e300;
    std::vector<Pair> pairs;
};

bool parseLimit(const std::string& word, double* limit) {
    char* end = nullptr;
    *limit = std::strtod(word.c_str(), &end);
    return !word.empty() && *end == '\0' && *limit >= 0.0;
}

bool parse(int argc, char** argv, Options* options) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--max-mean" || word == "--max-rms") {
            double* limit = word == "--max-mean" ? &options->maxMean : &options->maxRms;
            if (i + 1 >= argc || !parseLimit(argv[++i], limit)) {
                return false;
            }
        } else if (options->truth.empty() && word.find('=') == std::string::npos) {
            options->truth = word;
        } else {
            const std::size_t equals = word.find('=');
            if (equals == std::string::npos || equals == 0 || equals + 1 == word.size()) {
                return false;
            }
            options->pairs.push_back({word.substr(0, equals), word.substr(equals + 1)});
        }
    }
    return !options->truth.empty() && !options->pairs.empty();
}

bool compareAll(const Options& options) {
    // Below this edge jump the counting noise of a pixel, not the fit, decides the fraction.
    constexpr double minThickness = 0.3;
    const Map thickness = readMap(options.truth / "thickness.txt");
    bool good = true;
    std::printf("  %-10s %8s %8s %11s %10s %10s %7s\n", "species", "known", "found", "mean error",
                "rms error", "max error", "bins");
    for (const Options::Pair& pair : options.pairs) {
        const Map fraction = readMap(options.truth / (pair.species + ".txt"));
        if (fraction.width != thickness.width || fraction.height != thickness.height) {
            throw std::runtime_error("the maps below " + options.truth.string() +
                                     " are of different sizes");
        }
        const Recovery r =
            compareWithTruth(readResultTable(pair.table), fraction, thickness, minThickness);
        const bool within = r.points > 0 && r.notFinite == 0 &&
                            std::abs(r.meanError()) <= options.maxMean &&
                            r.rmsError <= options.maxRms;
        std::printf("  %-10s %8.4f %8.4f %+11.4f %10.4f %10.4f %7d%s\n", pair.species.c_str(),
                    r.knownMean, r.foundMean, r.meanError(), r.rmsError, r.maxError, r.points,
                    within ? "" : "  outside the limits");
        if (r.notFinite > 0) {
            std::printf("  %-10s %d bins without a value\n", "", r.notFinite);
        }
        good = good && within;
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == "--help") {
        std::cout << usage;
        return EXIT_SUCCESS;
    }
    Options options;
    if (!parse(argc, argv, &options)) {
        std::cerr << usage;
        return 2;
    }
    try {
        return compareAll(options) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::cerr << "tarnwick-compare: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
