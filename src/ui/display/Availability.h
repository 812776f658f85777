#pragma once

class QString;
class QWidget;

/// Enables a control, or disables it for the reason given, which then stands below its own tool
/// tip until it can be used again.
/// @param whyNot what the user has to do first, as a sentence; empty: the control can be used
void setUsable(QWidget* control, const QString& whyNot);

/// The control's own tool tip, whether it can be used or not.
void setOwnToolTip(QWidget* control, const QString& text);
