#pragma once

#include <QStringList>

/// How an action ended and what is to be said of it, one line a text: done; done, with a warning
/// (somebody should look); failed (it did not happen, or not as a whole).
struct [[nodiscard]] Outcome {
    QStringList failures;
    QStringList warnings;
    QStringList notes;     ///< of what went well, such as "Saved fraction.tif"
    QStringList files;     ///< that were written, by the names given
    bool stopped = false;  ///< on purpose, before its end: what was done till then is kept
    /// The batch ends here: what it is run for has been done, or what is to come would be
    /// worthless. Without a failure its work has not been done as a whole, either.
    bool endsBatch = false;

    static Outcome failure(const QString& text) { return {{text}, {}, {}, {}, false, false}; }
    static Outcome warning(const QString& text) { return {{}, {text}, {}, {}, false, false}; }
    static Outcome note(const QString& text) { return {{}, {}, {text}, {}, false, false}; }

    bool failed() const { return !failures.isEmpty(); }
    /// What somebody should look at, failures first.
    QStringList texts() const { return failures + warnings; }

    Outcome& operator+=(const Outcome& other) {
        failures += other.failures;
        warnings += other.warnings;
        notes += other.notes;
        files += other.files;
        stopped = stopped || other.stopped;
        endsBatch = endsBatch || other.endsBatch;
        return *this;
    }
};
