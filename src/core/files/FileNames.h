#pragma once

#include <QString>

/// The name of one file out of several that are saved together: directory of @p base (made
/// absolute), its complete base name, "-", @p tag, "." and its suffix. "/d/res.png" with tag "1-0"
/// gives "/d/res-1-0.png"; a base without a suffix gives a name that ends in ".".
QString taggedName(const QString& base, const QString& tag);

/// @p base (made absolute) with @p defaultSuffix, given without its dot, if it has no suffix of its
/// own; otherwise its own suffix stays.
QString withSuffix(const QString& base, const QString& defaultSuffix);
