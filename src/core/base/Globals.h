#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <array>

#include "base/Numbers.h"

// Values that every room reads. initGlobals() fills them before the application object exists;
// afterwards only DataDir and DebugFlag may change, and only on the interface thread. The tables
// are read from worker threads and must never change again.

/// Directory in which every file dialog opens.
extern QString DataDir;

/// Curve and marker colours, opaque, picked by index with getColor().
extern QList<QColor> Colors;

/// Grey levels: entry i is i.
extern std::array<unsigned char, 256> GreyTable;

/// False colours as R, G, B triples: black, red, yellow, white. Entry 767 is spare: look-ups stop
/// at 766.
extern std::array<std::array<unsigned char, 3>, 768> ColorMap;

/// Set by "-dbg".
extern bool DebugFlag;

/// Fills the tables above and the batch command tables, registers the types that travel between
/// threads and silences libtiff's own messages. The first action of every program and test.
void initGlobals();

/// The part of initGlobals() that fills the three tables above.
void buildColourTables();

/// Colour i modulo the number of colours (also for negative i); opaque black if there are none.
QColor getColor(int i);

/// Grey level of v in 0..1: entry trunc(v * 256), clamped to 0..255. NaN gives entry 0.
const unsigned char* greyOf(double v);
/// Grey level by index, clamped to 0..255.
const unsigned char* greyOf(int i);

/// False colour of v in 0..1: three bytes of entry trunc(v * 766), clamped to 0..766. NaN gives
/// entry 0.
const unsigned char* colorOf(double v);
/// False colour by index, clamped to 0..766.
const unsigned char* colorOf(int i);
