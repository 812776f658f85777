#pragma once

class QString;
class QWidget;

// Keeps a window's size, place, visibility and pop-up state in the platform's settings store
// (organization "Haldmoor Lab", application "Tarnwick"), one group a window. Windows do not
// remember their places at present: nothing calls these yet.

void saveWindowGeometry(const QWidget* w, const QString& group, bool popUp);

/// What is missing in the store reads as 400 x 400 at (200, 200), visible, pop-up.
void restoreWindowGeometry(QWidget* w, const QString& group, bool* popUp);
