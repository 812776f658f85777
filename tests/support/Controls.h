#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QtTest>

/// The window of a kind, or the panel in a dock.
template <typename Window>
Window* topLevel() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* found = qobject_cast<Window*>(window);
        found = found != nullptr ? found : window->findChild<Window*>();
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

/// A control of a panel or, without one, of any window.
template <typename Control>
Control* control(const QString& name, const QObject* panel = nullptr) {
    Control* found = panel != nullptr ? panel->findChild<Control*>(name) : nullptr;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (panel == nullptr && found == nullptr) {
            found = window->findChild<Control*>(name);
        }
    }
    if (found == nullptr) {
        qFatal("no %s", qPrintable(name));
    }
    return found;
}

inline QString textOf(const QString& label, const QObject* panel = nullptr) {
    return control<QLabel>(label, panel)->text();
}

/// Presses a button that can be pressed.
inline void press(const QString& name, const QObject* panel = nullptr) {
    auto* button = control<QAbstractButton>(name, panel);
    QVERIFY2(button->isEnabled(), qPrintable(name + ' ' + button->toolTip()));
    button->click();
}

/// Answers the file dialog that is open.
inline void answer(const QStringList& names) {
    QFileDialog* open = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<QFileDialog*>(window);
        open = dialog != nullptr && dialog->isVisible() ? dialog : open;
    }
    if (open == nullptr) {
        QFAIL("no dialog is open");
    }
    open->hide();
    emit open->filesSelected(names);
    emit open->fileSelected(names.first());
}
