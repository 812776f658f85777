// The rows of the references, and the choice of a result among them.

#include <QButtonGroup>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QStyle>
#include <algorithm>

#include "display/Availability.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "panels/ReferenceFiles.h"
#include "panels/WhyNot.h"
#include "ui_Analyzer.h"

void Analyzer::followReferences() {
    const int before = m_references.size();
    while (m_references.size() < m_measurement.referenceCount()) {
        addRow();
    }
    if (m_references.size() > before) {
        growWithReferences();
    }
}

void Analyzer::addRow() {
    const int index = m_references.size();
    // The numbers of the residual-absorption buttons follow those of the references: they move up
    // before the new button takes the first of them.
    for (int i = ResidualCount - 1; i >= 0; --i) {
        m_choice->setId(residualButton(i), index + 1 + i);
    }

    auto* reference = new LCFReference(m_measurement, index, m_ui->RefBase);
    auto* button = new QRadioButton(tr("Select Ref%1").arg(index + 1), reference);
    button->setToolTip(tr("Show this reference's result image in the main window"));
    button->setObjectName(QStringLiteral("SelectRef%1").arg(index + 1));
    m_references.append(reference);
    m_choice->addButton(button, index);
    reference->setChoice(button);
    m_ui->refGrid->addWidget(reference, index, 0);
    reference->show();
    putNextInTabOrder(reference);
    connect(reference, &LCFReference::shownToggled, this, &Analyzer::showReferences);
    connect(reference, &LCFReference::filesAsked, this, [this, index] { m_files->ask(index); });
    connect(reference, &LCFReference::said, this, &Analyzer::sayOwn);
}

/// As a window of its own it is as high as its references need, as far as the screen goes; what has
/// no room scrolls.
void Analyzer::growWithReferences() {
    for (QWidget* inner = m_ui->RefBase; inner != this; inner = inner->parentWidget()) {
        if (inner->layout() != nullptr) {
            inner->layout()->activate();  // from the innermost, each tells the next of its size
        }
    }
    updateGeometry();
    if (!isWindow()) {
        return;
    }
    const QRect frame = screen()->availableGeometry();
    const QSize room = frame.size() - QSize(0, 2 * fontMetrics().height());  // less the title bar
    resize(size().expandedTo(sizeHint()).boundedTo(room));
    if (isVisible()) {
        const QPoint corner =
            frame.bottomRight() - QPoint(frameGeometry().width() - 1, frameGeometry().height() - 1);
        move(std::max(frame.left(), std::min(x(), corner.x())),
             std::max(frame.top(), std::min(y(), corner.y())));
    }
}

/// All of the content; less of it scrolls.
QSize Analyzer::sizeHint() const {
    const QSize content = m_ui->analyzerContent->minimumSizeHint();
    const QMargins margins = layout()->contentsMargins();
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    return {content.width() + bar + margins.left() + margins.right(),
            content.height() + m_ui->Message->sizeHint().height() + layout()->spacing() +
                margins.top() + margins.bottom()};
}

/// Room for the first row of controls and a part of the second.
QSize Analyzer::minimumSizeHint() const {
    const int line = fontMetrics().height();
    return QSize(16 * line, 8 * line).boundedTo(QSize(300, 150));
}

void Analyzer::putNextInTabOrder(const LCFReference* reference) {
    const QWidgetList controls = reference->inTabOrder();
    for (QWidget* control : controls) {
        if ((control->focusPolicy() & Qt::TabFocus) != 0 && control->window() == window()) {
            setTabOrder(m_lastReferenceControl, control);
            m_lastReferenceControl = control;
        }
    }
}

namespace {

/// Checks one of some buttons that exclude each other, or none.
void checkOnly(QAbstractButton* button, const QList<QAbstractButton*>& all) {
    const QSignalBlocker ofGroup(button != nullptr ? button->group() : nullptr);
    for (QAbstractButton* each : all) {
        const QSignalBlocker blocked(each);
        const bool excludes = each->autoExclusive();
        each->setAutoExclusive(false);
        each->setChecked(each == button);
        each->setAutoExclusive(excludes);
    }
}

}  // namespace

/// The buttons that are down say what is chosen: none of the two kinds for a map that has no
/// button, no reference for one of all of them.
void Analyzer::showChoice() {
    const Settings& settings = m_measurement.settings();
    const bool isNamed = settings.namedKind.has_value();
    const bool ofOne =
        !isNamed || resultKind(*settings.namedKind).family == ResultFamily::Reference;
    m_choice->setExclusive(false);
    checkOnly(ofOne ? m_choice->button(settings.selected) : nullptr, m_choice->buttons());
    m_choice->setExclusive(true);
    checkOnly(isNamed ? nullptr : kindButton(settings.resultType),
              {kindButton(Reference::DMut), kindButton(Reference::Ratio)});
    showDifferenceChoice();
}

/// A reference that took no part in the last fit has no map to choose.
void Analyzer::updateChoice() {
    const auto& references = m_measurement.references();
    const auto hasMap = [](const auto& reference) {
        const Result& result = reference->result(Reference::DMut);
        return result.image.hasData() && result.tookPart();
    };
    const bool fitted = std::any_of(references.begin(), references.end(), hasMap);
    for (std::size_t i = 0; i < references.size(); ++i) {
        setUsable(m_choice->button(static_cast<int>(i)),
                  fitted && !hasMap(references[i]) ? tookNoPart() : QString());
    }
}
