#pragma once

#include <QObject>

class Measurement;
class QPushButton;
class SaveDialogs;

/// Lets the button choose the dark frames, and clear them from its context menu; its tool tip says
/// which there are.
void connectDarkButton(QPushButton* button, Measurement& measurement, SaveDialogs* dialogs);
