#pragma once

#include <QCoreApplication>

/// Translates what batch lines have to say, for the window.
class Batch {
    Q_DECLARE_TR_FUNCTIONS(Batch)
};
