#include "window/DarkControl.h"

#include <QAction>
#include <QCoreApplication>
#include <QPushButton>

#include "measurement/Measurement.h"
#include "window/SaveDialogs.h"
#include "window/StatusLine.h"

void connectDarkButton(QPushButton* button, Measurement& measurement, SaveDialogs* dialogs) {
    const auto tr = [](const char* text) { return QCoreApplication::translate("Dark", text); };
    auto* clear = new QAction(tr(QT_TRANSLATE_NOOP("Dark", "Clear dark data")), button->window());
    clear->setObjectName(QStringLiteral("ClearDark"));
    button->addAction(clear);
    button->setContextMenuPolicy(Qt::ActionsContextMenu);
    QObject::connect(button, &QPushButton::clicked, button, [&measurement, dialogs, tr] {
        dialogs->askForFiles(
            tr(QT_TRANSLATE_NOOP("Dark", "Dark Data")),
            {tr(QT_TRANSLATE_NOOP("Dark", "Tiff Files (*.tif *.tiff)")),
             tr(QT_TRANSLATE_NOOP("Dark", "IMG Files (*.img)")),
             tr(QT_TRANSLATE_NOOP("Dark", "Any Files (* *.*)"))},
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
