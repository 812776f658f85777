#include "window/ResultFiles.h"

#include <QAction>

#include "measurement/ResultParts.h"
#include "measurement/Saving.h"
#include "panels/WhyNot.h"
#include "window/SaveDialogs.h"

ResultFiles::ResultFiles(Measurement& measurement, SaveDialogs* dialogs, QObject* parent)
    : QObject(parent),
      m_measurement(measurement),
      m_dialogs(dialogs),
      m_results(add(QStringLiteral("actionSaveResults"), tr("Save Res&ults (HDF5)..."),
                    tr("Save Results"), tr("Results (*.h5)"), QStringLiteral("h5"), saveResults)),
      m_table(add(QStringLiteral("actionSaveTable"), tr("Save Tab&le (CSV)..."), tr("Save Table"),
                  tr("Table (*.csv)"), QStringLiteral("csv"), saveTable)) {
    connect(&measurement, &Measurement::changed, this, [this](Measurement::Changes what) {
        if (what &
            (Measurement::Changes(Measurement::Results) | Measurement::Map | Measurement::AtWork)) {
            update();
        }
    });
    update();
}

QAction* ResultFiles::add(const QString& name, const QString& text, const QString& title,
                          const QString& filter, const QString& suffix, const Save& save) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [=] {
        m_dialogs->askForTarget(
            title, {filter, tr("Any Files (* *.*)")}, suffix,
            [this, save](const QString& file) { emit said(save(m_measurement, file), file); });
    });
    return action;
}

/// What cannot be saved says why.
void ResultFiles::update() {
    const auto set = [](QAction* action, const QString& whyNot, const QString& tip) {
        action->setEnabled(whyNot.isEmpty());
        action->setToolTip(whyNot.isEmpty() ? tip : whyNot);
    };
    const QString running = whileAnalyzing(m_measurement);
    const std::vector<ResultPart> parts = resultParts(m_measurement);
    const auto unless = [&running](bool fulfilled, const QString& whyNot) {
        return !running.isEmpty() ? running : fulfilled ? QString() : whyNot;
    };
    set(m_results, unless(!parts.empty(), tr("Fit or calibrate the area first.")),
        tr("All maps with spectra, origin and record, in one file for Python and viewers of NeXus "
           "files"));
    set(m_table,
        unless(!fitTable(parts).columns.empty(), tr("Fit the area with references first.")),
        tr("All maps of the fit side by side, a row for each bin"));
}
