#include "ResultTable.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace samples {

namespace {

std::ifstream openForReading(const std::filesystem::path& fileName) {
    std::ifstream in(fileName);
    if (!in) {
        throw std::runtime_error("can not open " + fileName.string());
    }
    return in;
}

bool takeHeaderInteger(const std::string& line, const std::string& name, int* value) {
    const std::string start = "# " + name + " = ";
    return line.rfind(start, 0) == 0 && std::sscanf(line.c_str() + start.size(), "%d", value) == 1;
}

}  // namespace

ResultTable readResultTable(const std::filesystem::path& fileName) {
    std::ifstream in = openForReading(fileName);
    ResultTable table;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            takeHeaderInteger(line, "bin half width", &table.halfWidth);
            takeHeaderInteger(line, "bin half height", &table.halfHeight);
            continue;
        }
        std::replace(line.begin(), line.end(), ',', ' ');
        double x = 0.0;
        double y = 0.0;
        double value = 0.0;
        if (std::sscanf(line.c_str(), "%lf %lf %lf", &x, &y, &value) != 3 ||
            !(std::abs(x) < 1e6 && std::abs(y) < 1e6)) {
            throw std::runtime_error(fileName.string() + ": no table of x, y, value: " + line);
        }
        table.points.push_back({static_cast<int>(x), static_cast<int>(y), value});
    }
    const auto sensible = [](int half) { return half >= 0 && half < 10000; };
    if (table.points.empty() || !sensible(table.halfWidth) || !sensible(table.halfHeight)) {
        throw std::runtime_error(fileName.string() + ": no values");
    }
    return table;
}

Map readMap(const std::filesystem::path& fileName) {
    std::ifstream in = openForReading(fileName);
    int width = 0;
    int height = 0;
    std::string line;
    while (in.peek() == '#' && std::getline(in, line)) {
        takeHeaderInteger(line, "width", &width);
        takeHeaderInteger(line, "height", &height);
    }
    if (width < 1 || height < 1 || width > 100000 || height > 100000) {
        throw std::runtime_error(fileName.string() + ": no size");
    }
    Map map(width, height);
    for (double& value : map.values) {
        if (!(in >> value)) {
            throw std::runtime_error(fileName.string() + ": too few values");
        }
    }
    return map;
}

Recovery compareWithTruth(const ResultTable& table, const Map& fraction, const Map& thickness,
                          double minThickness) {
    Recovery recovery;
    double squares = 0.0;
    for (const ResultTable::Point& point : table.points) {
        const int x0 = point.x - table.halfWidth;
        const int x1 = point.x + table.halfWidth;
        const int y0 = point.y - table.halfHeight;
        const int y1 = point.y + table.halfHeight;
        if (x0 < 0 || y0 < 0 || x1 >= fraction.width || y1 >= fraction.height) {
            continue;
        }
        double amount = 0.0;
        double whole = 0.0;
        bool inside = true;
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                inside = inside && thickness.at(x, y) >= minThickness;
                amount += fraction.at(x, y) * thickness.at(x, y);
                whole += thickness.at(x, y);
            }
        }
        if (!inside) {
            continue;
        }
        if (!std::isfinite(point.value)) {
            ++recovery.notFinite;
            continue;
        }
        const double known = amount / whole;
        const double error = point.value - known;
        ++recovery.points;
        recovery.knownMean += known;
        recovery.foundMean += point.value;
        squares += error * error;
        recovery.maxError = std::max(recovery.maxError, std::abs(error));
    }
    if (recovery.points > 0) {
        recovery.knownMean /= recovery.points;
        recovery.foundMean /= recovery.points;
        recovery.rmsError = std::sqrt(squares / recovery.points);
    }
    return recovery;
}

}  // namespace samples
