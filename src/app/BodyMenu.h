#pragma once

class QMainWindow;

/// Builds the menu bar of the main window from the controls of its form: each action presses a
/// button or shows a choice, so that menu and buttons can not do different things.
void buildBodyMenu(QMainWindow* window);
