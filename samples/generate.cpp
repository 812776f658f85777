// tarnwick-samples: writes the sample measurement, a phantom whose composition is known.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "FrameWriter.h"
#include "SampleFiles.h"

namespace fs = std::filesystem;
using namespace samples;

namespace {

const char* const usage =
    "usage: tarnwick-samples DIR [--noise-free] [--size WxH] [--energies N]\n"
    "\n"
    "Writes a simulated imaging XAFS measurement at the Fe K edge into DIR: the stacks i1 "
    "(sample),\n"
    "i0 (beam) and foil (energy standard), reference and standard spectra, and what is known\n"
    "about the sample (truth).\n"
    "\n"
    "  --noise-free   whole counts without Poisson noise\n"
    "  --size WxH     image size in pixels, 16 to 4096 each (256x192)\n"
    "  --energies N   energies of the I1 stacks, 20 to 1000 (90); I0 has a third of them\n";

struct Options {
    fs::path dir;
    int width = 256;
    int height = 192;
    int energies = 90;
    bool noisy = true;
};

bool parse(int argc, char** argv, Options* options) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::string next = i + 1 < argc ? argv[i + 1] : "";
        int used = 0;
        if (word == "--noise-free") {
            options->noisy = false;
        } else if (word == "--size") {
            if (std::sscanf(next.c_str(), "%dx%d%n", &options->width, &options->height, &used) !=
                    2 ||
                next.size() != static_cast<std::size_t>(used)) {
                return false;
            }
            ++i;
        } else if (word == "--energies") {
            if (std::sscanf(next.c_str(), "%d%n", &options->energies, &used) != 1 ||
                next.size() != static_cast<std::size_t>(used)) {
                return false;
            }
            ++i;
        } else if (word.empty() || word[0] == '-' || !options->dir.empty()) {
            return false;
        } else {
            options->dir = word;
        }
    }
    const auto within = [](int n, int low, int high) { return n >= low && n <= high; };
    return !options->dir.empty() && within(options->width, 16, 4096) &&
           within(options->height, 16, 4096) && within(options->energies, 20, 1000);
}

// The program takes the first digits or underscores before "eV" in a path for the energy.
bool looksLikeEnergy(const std::string& path) {
    for (std::size_t at = path.find("eV"); at != std::string::npos; at = path.find("eV", at + 1)) {
        if (at > 0 && std::string("0123456789_").find(path[at - 1]) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void warnAboutPath(const fs::path& dir) {
    if (looksLikeEnergy(fs::absolute(dir).string())) {
        std::cerr << "warning: the path " << dir.string()
                  << " holds a number followed by \"eV\", which is taken for the energy of every "
                     "file below it\n";
    }
}

// Frames of an earlier run at other energies would be loaded with the new ones.
void removeOldFrames(const fs::path& dir) {
    std::vector<fs::path> old;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
        if (entry.path().filename().string().rfind("fe-", 0) == 0 &&
            entry.path().extension() == ".tif") {
            old.push_back(entry.path());
        }
    }
    for (const fs::path& path : old) {
        fs::remove(path);
    }
}

template <typename Exposure>
void writeStack(const fs::path& dir, const std::string& stem, const Options& options,
                const std::vector<double>& energies, Exposure exposure) {
    fs::create_directories(dir);
    removeOldFrames(dir);
    int number = 0;
    for (const double energy : energies) {
        writeFrame((dir / frameName(stem, energy)).string(), options.width, options.height,
                   exposure(energy, number));
        ++number;
    }
}

void generate(const Options& options) {
    const AbsorptionModel model;
    const Phantom phantom(options.width, options.height);
    const Measurement camera(model, phantom, options.noisy);
    const std::vector<double> energies = edgeScan(options.energies);
    const std::vector<double> beamEnergies = beamScan(options.energies / 3);

    // Says that everything below is there, so it goes first and comes last.
    const fs::path summary = options.dir / "sample.txt";
    fs::create_directories(options.dir);
    fs::remove(summary);

    writeStack(options.dir / "i0", "fe-i0", options, beamEnergies,
               [&](double e, int n) { return camera.beam(e, n); });
    writeStack(options.dir / "i1", "fe-i1", options, energies,
               [&](double e, int n) { return camera.sample(e, n); });
    writeStack(options.dir / "foil", "fe-foil", options, energies,
               [&](double e, int n) { return camera.foil(e, n); });
    writeReferences(options.dir / "references", model, energies);
    writeStandard(options.dir / "standard", model, options.noisy);
    writeTruth(options.dir / "truth", phantom);
    fs::create_directories(options.dir / "results");

    std::string text = "Simulated imaging XAFS measurement, Fe K edge\n";
    text += "size " + std::to_string(options.width) + " x " + std::to_string(options.height) + "\n";
    text += "energies " + std::to_string(energies.size()) + " (i1, foil), " +
            std::to_string(beamEnergies.size()) + " (i0)\n";
    text += options.noisy ? "noise Poisson\n" : "noise none\n";
    writeTextFile(summary, text);
    std::cout << text;
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
        warnAboutPath(options.dir);
        generate(options);
    } catch (const std::exception& error) {
        std::cerr << "tarnwick-samples: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
