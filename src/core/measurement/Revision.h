#pragma once

#include <QtGlobal>

/// A number that no input has had before: inputs of equal revision are the same.
quint64 nextRevision();
