#pragma once

class QWidget;

/// Gives the controls of the main window that have no text the names by which screen readers call
/// them, wherever in the window they are.
void nameControls(QWidget* window);
