#pragma once

#include <QStringList>
#include <optional>
#include <vector>

#include "measurement/Settings.h"

// The words by which batches and records name what is chosen.

/// The word of a background in batches and records.
QString backgroundWord(int background);
/// The background that such a word names, in any case; -1 for none.
int backgroundOfWord(const QString& word);

/// The word of constraints in batches and records, and those that a word names, in any case.
QString constraintsWord(FitRule::Constraints constraints);
std::optional<FitRule::Constraints> constraintsOfWord(const QString& word);

/// The kind of result that a name means, in any case.
std::optional<ResultId> resultOfName(const QString& name);

/// The mask that a batch asks for: 0 for "off"; none for what is neither this nor above 0.
std::optional<double> maskOfWord(const QString& word);

/// each, mean, or the energy in eV: as batches and records write it.
QString edgeWord(const EdgeChoice& choice);
/// What such a word in any case chooses; none for another word and for an energy that is not finite
/// or not above 0.
std::optional<EdgeChoice> edgeOfWord(const QString& word);

/// region, ellipse or polygon: as the commands that select an area end.
QString shapeWord(AreaShape shape);
/// The numbers behind it: x0 y0 x1 y1, or x and y of every vertex.
QStringList areaNumbers(const Area& area);

/// jump or none.
QString scaleWord(FitRule::ReferenceScale scale);
std::optional<FitRule::ReferenceScale> scaleOfWord(const QString& word);

/// counts, absorption or difference.
QString frameViewWord(FrameView::Kind kind);
std::optional<FrameView::Kind> frameViewOfWord(const QString& word);

/// The kinds of map that a name means, in any case: one, or all of them for "maps"; none for other
/// names.
std::vector<ResultId> mapsOfName(const QString& name);

/// stated, full, robust or fixed.
QString rangeWord(MapRange::Kind kind);
/// What such a word in any case means; none for "fixed", which is said by numbers.
std::optional<MapRange::Kind> rangeOfWord(const QString& word);

/// The word of a colour map, "stated" for none chosen, with "reversed" behind it.
QStringList colorWords(const ViewColors& colors);
/// What the first of these words in any case chooses; none for another one.
std::optional<ViewColors> colorsOfWord(const QString& word);
