#include "window/DarkControl.h"

#include <QAction>
#include <QCoreApplication>
#include <QPushButton>

#include "measurement/Measurement.h"
#include "window/SaveDialogs.h"
#include "window/StatusLine.h"

namespace {
class Dark {
    Q_DECLARE_TR_FUNCTIONS(Dark)
};
}  // namespace

void connectDarkButton(QPushButton* button, Measurement& measurement, SaveDialogs* dialogs) {
    auto* clear = new QAction(Dark::tr("Clear Dark Data"), button->window());
    clear->setObjectName(QStringLiteral("ClearDark"));
    button->addAction(clear);
    button->setContextMenuPolicy(Qt::ActionsContextMenu);
    QObject::connect(button, &QPushButton::clicked, button, [&measurement, dialogs] {
        dialogs->askForFiles(
            Dark::tr("Dark Data"),
            {Dark::tr("Tiff Files (*.tif *.tiff)"), Dark::tr("IMG Files (*.img)"),
             Dark::tr("Any Files (* *.*)")},
            false, [&measurement](const QStringList& f) { measurement.loadDark(f); },
            QStringLiteral("DarkDialog"));
    });
    QObject::connect(clear, &QAction::triggered, button,
                     [&measurement] { measurement.dark().clear(); });
    const QString own = button->toolTip();
    const auto describe = [button, clear, own, &measurement] {
        const QString state = darkState(measurement.dark());
        clear->setEnabled(!state.isEmpty());
        button->setToolTip(state.isEmpty() ? own : own + QLatin1Char('\n') + state);
    };
    QObject::connect(&measurement, &Measurement::changed, button, describe);
    describe();
}
