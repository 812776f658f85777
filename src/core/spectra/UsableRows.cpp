#include "spectra/UsableRows.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTextCodec>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "base/DebugLog.h"
#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "spectra/SpectrumFile.h"

namespace {

struct Usable {
    Q_DECLARE_TR_FUNCTIONS(SpectrumFile)
};

using Point = std::optional<Spoint>;

/// Ways to write two columns.
struct Columns {
    QRegularExpression separator;
    bool hasDecimalComma;
};

const std::array<Columns, 4>& columnKinds() {
    static const std::array<Columns, 4> kinds{{
        {QRegularExpression(QStringLiteral("\\s+")), true},
        {QRegularExpression(QStringLiteral("\\s*;\\s*")), true},
        {QRegularExpression(QStringLiteral(",?\\s+")), true},
        {QRegularExpression(QStringLiteral("\\s*,\\s*|\\s+")), false},
    }};
    return kinds;
}

/// NaN for what is no finite number.
double numberOf(QString text, bool hasDecimalComma) {
    static const QRegularExpression decimalComma(QStringLiteral("(?<=\\d),(?=\\d)"));
    if (hasDecimalComma && text.count(QLatin1Char(',')) == 1) {
        text.replace(decimalComma, QStringLiteral("."));
    }
    text.replace(QLatin1Char('d'), QLatin1Char('e'), Qt::CaseInsensitive);
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) ? value : std::nan("");
}

Point pointOf(double energy, double value) {
    return energy > 0.0 && std::isfinite(energy) && std::isfinite(value)
               ? Point(Spoint{energy, value})
               : Point();
}

Point pointOf(const QString& line, const Columns& columns) {
    const QStringList items = line.split(columns.separator);
    return items.size() < 2 ? Point()
                            : pointOf(numberOf(items.at(0), columns.hasDecimalComma),
                                      numberOf(items.at(1), columns.hasDecimalComma));
}

/// The lines that hold something, without the blanks around them.
QStringList linesOf(QTextStream& in) {
    static const QRegularExpression lineEnd(QStringLiteral("[\\n\\x1a]+"));
    QStringList lines;
    for (const QString& line : in.readAll().split(lineEnd)) {
        lines << line.trimmed();
    }
    lines.removeAll(QString());
    return lines;
}

class Taking {
  public:
    explicit Taking(const QString& fileName) : m_fileName(fileName) {}

    TakenSpectrum take() {
        InputFile file(placeOf(m_fileName));
        if (!file.open(QIODevice::ReadOnly)) {
            debugFile("Can not open", m_fileName);
            m_taken.spectrum.setValid(false);
            m_taken.whyNot = Usable::tr("cannot be read: %1").arg(m_fileName);
            if (file.isNoFile()) {
                refuse(file.whyNot());
            }
            return m_taken;
        }
        return take(file, [&file] { return !file.hasChanged(); });
    }

    TakenSpectrum take(QIODevice& file, const std::function<bool()>& isAsOpened) {
        if (!isText(file.peek(4096))) {
            refuse(Usable::tr("not a text file"));
            return m_taken;
        }
        if (file.size() > Limits::LargestText) {
            refuse(Usable::tr("longer than any spectrum"));
            return m_taken;
        }
        askForMemory(Limits::MemoryOfText * static_cast<quint64>(file.size()));
        const QByteArray content = file.readAll();
        if (!isAsOpened()) {
            refuse(InputFile::changedText());
            return m_taken;
        }
        QTextCodec* utf8 = QTextCodec::codecForName("UTF-8");
        QString text = QTextCodec::codecForUtfText(content, utf8)->toUnicode(content);
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        QTextStream in(&text);
        if (isFirstLineOf9809(text.left(text.indexOf(QLatin1Char('\n'))))) {
            m_taken.spectrum.setNot9809(0);
            read9809(in);
        } else {
            readColumns(linesOf(in));
        }
        finish();
        return m_taken;
    }

  private:
    /// By the start of a file: text has no control characters but white space and the end mark.
    static bool isText(const QByteArray& start) {
        if (start.startsWith("\xff\xfe") || start.startsWith("\xfe\xff")) {
            return true;  // UTF-16
        }
        return std::all_of(start.begin(), start.end(), [](char sign) {
            const auto code = static_cast<unsigned char>(sign);
            return code >= 0x20 || (code >= '\t' && code <= '\r') || code == 0x1a;
        });
    }

    void readColumns(const QStringList& lines) {
        std::vector<Point> best;
        std::ptrdiff_t most = -1;
        for (const Columns& columns : columnKinds()) {
            std::vector<Point> points;
            for (const QString& line : lines) {
                if (!line.startsWith(QLatin1Char('#'))) {
                    points.push_back(pointOf(line, columns));
                }
            }
            const auto count = std::count_if(points.begin(), points.end(),
                                             [](const Point& point) { return point.has_value(); });
            const bool isAll = count == static_cast<std::ptrdiff_t>(points.size());
            if (count > most) {
                most = count;
                best = std::move(points);
            }
            if (isAll) {
                break;  // no other way reads more
            }
        }
        const auto first = std::find_if(best.begin(), best.end(),
                                        [](const Point& point) { return point.has_value(); });
        std::for_each(first, best.end(), [this](const Point& point) { add(point); });
    }

    void read9809(QTextStream& in) {
        bool isWhole = false;
        const double spacing = readHeaderOf9809(in, &isWhole);
        if (!isWhole || !(spacing > 0.0)) {
            refuse(isWhole ? Usable::tr("a 9809 file without its lattice spacing (D=)")
                           : Usable::tr("a 9809 file without the line \"Offset\""));
            return;
        }
        QStringList lines = linesOf(in);
        for (QString& line : lines) {
            line.replace(QLatin1Char('D'), QLatin1Char('E'), Qt::CaseInsensitive);
            const Row9809 row = rowOf9809(line, spacing);
            add(row.hasCounts ? pointOf(row.point.x, row.point.y) : Point());
        }
    }

    void add(const Point& point) {
        if (point) {
            m_points.push_back(*point);
        } else {
            ++m_leftOut;
        }
    }

    void finish() {
        if (!m_taken.whyNot.isEmpty()) {
            return;
        }
        putInOrder();
        if (m_points.size() < FewestUsableEnergies) {
            refuse(Usable::tr("%n usable point(s), at least five are needed", nullptr,
                              static_cast<int>(m_points.size())));
        } else if (looksLikeKeV()) {
            refuse(Usable::tr("energies from %1 to %2 look like keV, eV are needed")
                       .arg(m_points.front().x)
                       .arg(m_points.back().x));
        } else {
            for (const Spoint& point : m_points) {
                m_taken.spectrum.append(point.x, point.y);
            }
            if (m_leftOut > 0) {
                m_taken.warnings << Usable::tr(
                                        "%n row(s) without an energy and a value left out: %1",
                                        nullptr, m_leftOut)
                                        .arg(m_fileName);
            }
        }
    }

    void putInOrder() {
        std::stable_sort(m_points.begin(), m_points.end(),
                         [](const Spoint& a, const Spoint& b) { return a.x < b.x; });
        std::vector<Spoint> means;
        for (auto first = m_points.begin(); first != m_points.end();) {
            const auto end = std::find_if(first, m_points.end(),
                                          [&](const Spoint& point) { return point.x != first->x; });
            double sum = 0.0;
            std::for_each(first, end, [&sum](const Spoint& point) { sum += point.y; });
            means.push_back({first->x, sum / static_cast<double>(end - first)});
            first = end;
        }
        m_points = std::move(means);
    }

    /// No edge lies below 50 eV; one between 50 and 200 keV is seen as a few units in 50 to 200,
    /// where a spectrum in eV takes some ten for its edge alone.
    bool looksLikeKeV() const {
        const double middle = m_points[m_points.size() / 2].x;
        const double range = m_points.back().x - m_points.front().x;
        return middle < 50.0 || (middle < 200.0 && range < 10.0);
    }

    void refuse(const QString& why) {
        m_taken.whyNot = Usable::tr("not taken, %1: %2").arg(why, m_fileName);
    }

    const QString m_fileName;
    TakenSpectrum m_taken;
    std::vector<Spoint> m_points;
    int m_leftOut = 0;
};

}  // namespace

TakenSpectrum takeSpectrumFile(const QString& fileName) {
    auto taken = answerOf(fileName, [fileName] { return Taking(fileName).take(); });
    if (!taken) {
        taken.emplace();
        taken->whyNot = Usable::tr("not taken, %1: %2").arg(givenUpText(), fileName);
    }
    return *std::move(taken);
}

TakenSpectrum takeSpectrum(QIODevice& file, const QString& fileName) {
    return Taking(fileName).take(file, [] { return true; });
}
