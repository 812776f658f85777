#include "window/SpectrumFitWindow.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <cmath>

#include "base/Numbers.h"
#include "display/Availability.h"
#include "display/DispA.h"
#include "display/MessageLine.h"
#include "drawing/Letters.h"
#include "drawing/PlotPicture.h"
#include "window/SaveDialogs.h"

namespace {

constexpr int RowsSeen = 3;

QString inCell(double value) {
    return std::isfinite(value) ? QString::number(value, 'f', 4) : QStringLiteral("-");
}

QString valueIn(const RoundedPair& pair, double value) {
    return pair.error.isEmpty() ? inCell(value) : pair.value + pair.power;
}

QString errorIn(const RoundedPair& pair) {
    return pair.error.isEmpty() ? QStringLiteral("-") : pair.error + pair.power;
}

/// The texts of a plot in the language of the program.
PlotTexts translatedTexts() {
    PlotTexts texts;
    texts.ordinates[SpectrumPlot::DoubleNormalized] = SpectrumFitWindow::tr("Double normalized");
    texts.abscissas[SpectrumPlot::ElectronVolts] = SpectrumFitWindow::tr("Energy [eV]");
    texts.fit = SpectrumFitWindow::tr("Fit");
    texts.residual = SpectrumFitWindow::tr("Residual");
    texts.empty = SpectrumFitWindow::tr("No fit");
    return texts;
}

}  // namespace

SpectrumFitWindow::SpectrumFitWindow(Measurement& measurement, SaveDialogs* dialogs)
    : m_measurement(measurement),
      m_dialogs(dialogs),
      m_choose(new QPushButton(tr("Spectrum File..."), this)),
      m_name(new QLabel(this)),
      m_shares(new QTableWidget(0, 5, this)),
      m_numbers(new QLabel(this)),
      m_canvas(new DispA(this)),
      m_saveTable(new QPushButton(tr("Save Table..."), this)),
      m_savePlot(new QPushButton(tr("Save Plot..."), this)),
      m_message(new MessageLine(this)) {
    setObjectName(QStringLiteral("SpectrumFit"));
    setWindowTitle(tr("Fit of a Spectrum File"));
    makeControls();
    arrange();
    m_pace.setSingleShot(true);
    m_pace.setInterval(0);
    connect(&m_pace, &QTimer::timeout, this, &SpectrumFitWindow::fitAgain);
    connect(&m_measurement, &Measurement::changed, this, [this](Measurement::Changes what) {
        if (what & (Measurement::References | Measurement::Setting)) {
            m_isOutdated = true;
            if (isVisible()) {
                m_pace.start();
            }
        }
    });
    showFit();
}

void SpectrumFitWindow::makeControls() {
    m_choose->setObjectName(QStringLiteral("FitSpectrumFile"));
    setOwnToolTip(m_choose,
                  tr("Choose the spectrum file that the references in use are fitted to"));
    connect(m_choose, &QPushButton::clicked, this, &SpectrumFitWindow::askForSample);
    m_name->setObjectName(QStringLiteral("SampleFile"));
    m_name->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_shares->setObjectName(QStringLiteral("Shares"));
    m_shares->setAccessibleName(tr("Fractions and edge jumps of the references"));
    m_shares->setHorizontalHeaderLabels(
        {tr("Reference"), tr("Fraction"), tr("Error"), tr("Edge jump"), tr("Error")});
    m_shares->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_shares->setToolTip(tr("Errors are one sigma, from what the fit leaves of the spectrum"));
    m_shares->verticalHeader()->hide();
    m_shares->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    const QFontMetrics letters = fontMetrics();
    m_shares->setFixedHeight(m_shares->horizontalHeader()->sizeHint().height() +
                             RowsSeen * m_shares->verticalHeader()->defaultSectionSize() +
                             2 * m_shares->frameWidth());
    m_numbers->setObjectName(QStringLiteral("FitNumbers"));
    m_numbers->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_numbers->setWordWrap(true);

    m_canvas->setObjectName(QStringLiteral("FitPlot"));
    m_canvas->setAccessibleName(tr("Plot of the fit"));
    m_canvas->setMinimumSize(letters.height() * 24, letters.height() * 12);
    setOwnToolTip(m_canvas,
                  tr("Spectrum, fit and what each reference has in it; below, the difference"));
    connect(m_canvas, &DispA::drawImage1, this, &SpectrumFitWindow::paintPlot);

    m_saveTable->setObjectName(QStringLiteral("SaveFitTable"));
    setOwnToolTip(m_saveTable, tr("Save fractions, numbers and curves as a text table"));
    connect(m_saveTable, &QPushButton::clicked, this, [this] {
        m_dialogs->askForTarget(
            tr("Save Fit of a Spectrum"), {tr("Text Table (*.dat)"), tr("Any Files (* *.*)")},
            QStringLiteral("dat"), [this](const QString& name) { save(saveTable, name); });
    });
    m_savePlot->setObjectName(QStringLiteral("SaveFitPlot"));
    setOwnToolTip(m_savePlot, tr("Save the plot as PDF or as a picture"));
    connect(m_savePlot, &QPushButton::clicked, this, [this] {
        m_dialogs->askForTarget(
            tr("Save Plot of the Fit"),
            {tr("PDF File (*.pdf)"), tr("Image File (*.png)"), tr("Any Files (* *.*)")},
            QStringLiteral("pdf"), [this](const QString& name) { save(savePlot, name); });
    });
    m_message->setObjectName(QStringLiteral("FitMessage"));
}

void SpectrumFitWindow::arrange() {
    auto* top = new QHBoxLayout;
    top->addWidget(m_choose);
    top->addWidget(m_name, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_saveTable);
    buttons->addWidget(m_savePlot);
    buttons->addStretch();
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(m_shares);
    all->addWidget(m_numbers);
    all->addWidget(m_canvas, 1);
    all->addLayout(buttons);
    all->addWidget(m_message);
    const int line = fontMetrics().height();
    resize(QSize(line * 38, line * 36).boundedTo(screen()->availableSize() * 9 / 10));
}

void SpectrumFitWindow::askForSample() {
    m_dialogs->askForFiles(
        tr("Fit a Spectrum File"),
        {tr("Spectrum Files (*.dat *.txt *.xdi)"), tr("Any Files (* *.*)")}, true,
        [this](const QStringList& files) {
            fit(files.value(0));
            show();
            raise();
        },
        QStringLiteral("SampleDialog"));
}

void SpectrumFitWindow::fit(const QString& fileName) {
    m_isOutdated = false;
    m_fit = fitSpectrum(m_measurement, fileName);
    showFit();
    emit said(m_fit.outcome, fileName);
}

void SpectrumFitWindow::fitAgain() {
    if (!m_isOutdated || m_fit.sample.name.isEmpty()) {
        return;
    }
    m_isOutdated = false;
    m_fit = fitSpectrum(m_measurement, m_fit.sample.name);
    showFit();
}

void SpectrumFitWindow::showEvent(QShowEvent* event) {
    QFrame::showEvent(event);
    fitAgain();
}

void SpectrumFitWindow::showFit() {
    m_name->setText(QFileInfo(m_fit.sample.name).fileName());
    m_name->setToolTip(m_fit.sample.path);
    showShares();
    m_plot = plotOf(m_fit);
    m_plot.texts = translatedTexts();
    m_canvas->update();
    m_message->say(m_fit.outcome);
    const QString none = m_fit.hasFit() ? QString() : tr("There is no fit.");
    setUsable(m_saveTable, none);
    setUsable(m_savePlot, none);
}

void SpectrumFitWindow::showShares() {
    m_shares->setRowCount(static_cast<int>(m_fit.parts.size()));
    int row = 0;
    for (const SpectrumFit::Part& part : m_fit.parts) {
        const QString name = QFileInfo(part.input.file.name).fileName();
        const RoundedPair fraction = roundedPair(part.share, part.shareError);
        const RoundedPair jump = roundedPair(part.jump, part.jumpError);
        const QString texts[] = {name, valueIn(fraction, part.share), errorIn(fraction),
                                 valueIn(jump, part.jump), errorIn(jump)};
        int column = 0;
        for (const QString& text : texts) {
            auto* item = new QTableWidgetItem(text);
            item->setTextAlignment((column > 0 ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
            m_shares->setItem(row, column++, item);
        }
        ++row;
    }
    m_numbers->setText(m_fit.hasFit()
                           ? tr("Sum %1, R %2, %3 to %4 eV (%5 of %6 energies)")
                                 .arg(inCell(m_fit.sum), QString::number(m_fit.r, 'g', 4),
                                      QString::number(m_fit.energies.front(), 'f', 1),
                                      QString::number(m_fit.energies.back(), 'f', 1))
                                 .arg(m_fit.energies.size())
                                 .arg(m_fit.energiesOfAll)
                           : QString());
}

void SpectrumFitWindow::save(Save how, const QString& fileName) {
    const Outcome outcome = how(m_measurement, m_fit, fileName);
    m_message->say(outcome);
    emit said(outcome, fileName);
}

void SpectrumFitWindow::paintPlot(QPainter* painter) {
    m_plot.colors = {palette().color(QPalette::WindowText), palette().color(QPalette::Base),
                     palette().color(QPalette::Disabled, QPalette::WindowText)};
    ::paintPlot(*painter, m_plot, QRectF(m_canvas->rect()), Letters(m_canvas->font()));
}
