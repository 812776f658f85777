#pragma once

class QWidget;

/// Has the push and tool buttons in a window that stay pressed show it by the colour of what is
/// selected: many styles only darken them, which nobody sees in a dark theme.
void colourCheckedButtons(QWidget* window);
