#include "window/CursorNumbers.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <cmath>
#include <limits>

#include "base/Numbers.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CursorNumbers)
};

/// As wide as the box: a number and its error have no room beside a label.
QLabel* addLine(QFormLayout* box, int row, const char* name, const QString& toolTip) {
    auto* line = new QLabel(box->parentWidget());
    line->setObjectName(QLatin1String(name));
    line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    line->setTextInteractionFlags(Qt::TextSelectableByMouse);
    line->setAccessibleDescription(toolTip);
    line->setToolTip(toolTip);
    box->insertRow(row, line);
    return line;
}

/// NaN where a map of the same run holds no number, or is not there.
double valueAt(const Result* result, const Run* run, int x, int y) {
    const bool isKnown = result != nullptr && result->image.hasData() && result->run.get() == run &&
                         result->image.grid().isInsideImage(x, y);
    return isKnown ? result->image.visibleValueAt(x, y) : std::numeric_limits<double>::quiet_NaN();
}

QString inShort(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', 3) : QStringLiteral("-");
}

}  // namespace

CursorNumbers::CursorNumbers(QFormLayout* box, QWidget* after) {
    int row = 0;
    QFormLayout::ItemRole role = QFormLayout::LabelRole;
    box->getWidgetPosition(after, &row, &role);
    m_withError =
        addLine(box, row + 1, "ValueWithError",
                Texts::tr("Value of the shown map at the position and its error, one sigma"));
    m_goodness =
        addLine(box, row + 2, "GoodnessOfFit",
                Texts::tr("R factor and reduced chi-square of the fit of the bin at the position"));
}

void CursorNumbers::show(const Measurement& measurement, const Result* shown, int x, int y) {
    const Run* run = shown != nullptr ? shown->run.get() : nullptr;
    const auto at = [&](ResultId id, int reference) {
        return run != nullptr ? valueAt(measurement.find(id, reference), run, x, y)
                              : std::numeric_limits<double>::quiet_NaN();
    };
    QString withError = QStringLiteral("\u00b1 -");
    if (shown != nullptr) {
        // Of an error map, too: what it is the error of.
        const ResultId value = shown->kind().value;
        if (const std::optional<ResultId> error = errorOf(value)) {
            const double sigma = at(*error, shown->reference);
            if (std::isfinite(sigma)) {
                withError = roundedPair(at(value, shown->reference), sigma).text();
            }
        }
    }
    m_withError->setText(withError);
    const bool isFit = run != nullptr && run->work == Work::Fit;
    const auto known = [&](ResultId id) {
        return inShort(isFit ? at(id, -1) : std::numeric_limits<double>::quiet_NaN());
    };
    m_goodness->setText(Texts::tr("R  %1\n\u03c7\u00b2 red.  %2")
                            .arg(known(ResultId::R), known(ResultId::Chi2Reduced)));
}
