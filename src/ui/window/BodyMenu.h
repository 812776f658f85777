#pragma once

#include <QList>

class QAction;
class QMainWindow;

/// Builds the menu bar of the main window from its controls and those of its tool windows: each
/// action presses a button, so that menu and buttons can not do different things.
/// The further entries for windows, for saving and those of the record stand in the menus as they
/// are.
void buildBodyMenu(QMainWindow* window, const QList<QAction*>& windows,
                   const QList<QAction*>& saving, const QList<QAction*>& record);
