#pragma once

#include <QRect>
#include <QSettings>
#include <QVector>

class QWidget;

// Places of windows, kept in the platform's settings store (organization "Haldmoor Lab",
// application "Tarnwick").

QSettings windowSettings();

// A window's size, place, visibility and pop-up state, one group a window.

void saveWindowGeometry(const QWidget* w, const QString& group, bool popUp);

/// What is missing in the store reads as 400 x 400 at (200, 200), visible, pop-up. A kept place
/// that is not on a screen is moved to one, see keepOnScreen().
void restoreWindowGeometry(QWidget* w, const QString& group, bool* popUp);

/// The place of a frame on one of some screens: the one that has most of it, or the first. It is
/// moved so that all of it is there, and made smaller when it does not fit.
QRect placeOnScreens(const QRect& frame, const QVector<QRect>& screens);

/// Puts a window with its frame on a screen that there is, less what panels of the desktop take.
void keepOnScreen(QWidget* w);

/// Around a window: what its frame takes, or probably will.
QMargins frameMargins(const QWidget* w);
