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

QLabel* addLine(QFormLayout* box, int row, const QString& title, const char* name,
                const QString& toolTip) {
    auto* label = new QLabel(title, box->parentWidget());
    auto* field = new QLabel(box->parentWidget());
    field->setObjectName(QLatin1String(name));
    field->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse);
    field->setAccessibleName(toolTip);
    field->setToolTip(toolTip);
    label->setBuddy(field);
    box->insertRow(row, label, field);
    return field;
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
        addLine(box, row + 1, Texts::tr("With error: "), "ValueWithError",
                Texts::tr("Value of the shown map at the position and its error, one sigma"));
    m_goodness =
        addLine(box, row + 2, Texts::tr("R,  \u03c7\u00b2 red.: "), "GoodnessOfFit",
                Texts::tr("R factor and reduced chi-square of the fit of the bin at the position"));
}

void CursorNumbers::show(const Measurement& measurement, const Result* shown, int x, int y) {
    const Run* run = shown != nullptr ? shown->run.get() : nullptr;
    const auto at = [&](ResultId id, int reference) {
        return run != nullptr ? valueAt(measurement.find(id, reference), run, x, y)
                              : std::numeric_limits<double>::quiet_NaN();
    };
    RoundedPair pair{QStringLiteral("-"), {}, {}};
    if (shown != nullptr) {
        // Of an error map, too: what it is the error of.
        const ResultId value = shown->kind().value;
        if (const std::optional<ResultId> error = errorOf(value)) {
            const double sigma = at(*error, shown->reference);
            if (std::isfinite(sigma)) {
                pair = roundedPair(at(value, shown->reference), sigma);
            }
        }
    }
    m_withError->setText(pair.text());
    const bool isFit = run != nullptr && run->work == Work::Fit;
    const double r = at(ResultId::R, -1);
    const double chi2 = at(ResultId::Chi2Reduced, -1);
    m_goodness->setText(isFit && (std::isfinite(r) || std::isfinite(chi2))
                            ? inShort(r) + QStringLiteral(",  ") + inShort(chi2)
                            : QStringLiteral("-"));
}
