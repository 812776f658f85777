#pragma once

#include <QWidgetList>

class QAction;
class QMainWindow;

/// Builds the menu bar of the main window from the controls of its form and of the tool windows:
/// each action presses a button, so that menu and buttons can not do different things.
/// The further entries for saving and those of the record stand in the File menu as they are.
void buildBodyMenu(QMainWindow* window, const QWidgetList& toolWindows,
                   const QList<QAction*>& saving, const QList<QAction*>& record);
