#pragma once

class QMainWindow;
class QMenu;

/// Fills the menu with the user guide, its page on mouse and keys, and what the program is. The
/// guide opens at the chapter on the window or panel that has the focus.
void fillHelpMenu(QMenu* menu, QMainWindow* window);
