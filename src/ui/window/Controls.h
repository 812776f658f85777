#pragma once

class Measurement;
class XafsView;
namespace Ui {
class Body;
}

/// Which controls of the main window can be used at the moment, and what is missing for the others.
void updateControls(const Ui::Body& ui, Measurement& measurement, const XafsView& view);
