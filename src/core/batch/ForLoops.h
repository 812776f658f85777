#pragma once

#include <QString>
#include <QStringList>
#include <vector>

/// One loop variable of a batch. Texts are kept as written; numbers are read when needed.
struct ForLoop {
    QString name;         ///< what :next looks for; case counts
    int forLine = 0;      ///< index of the (last physical) line of :for
    QString placeholder;  ///< what is replaced in the arguments of commands
    QString from;         ///< start value
    QString to;           ///< end value, inclusive
    QString value;        ///< current value, first as written in from
};

/// The loop variables of a running batch, in the order of their :for lines. A finished loop keeps
/// its last value until a :for of the same name replaces it.
class ForLoops {
  public:
    void clear() { m_loops.clear(); }

    /// :for with these arguments, read at line forLine. Replaces a record of the same name; the
    /// new one goes to the end.
    const ForLoop& begin(const QStringList& args, int forLine);

    /// The first record of that name, or null.
    const ForLoop* find(const QString& name) const;

    /// :next of that name: steps the value towards its end by one. True if the body is to run
    /// again, false if the loop is finished or unknown.
    bool step(const QString& name);

    /// Replaces the placeholders in every argument, loop by loop in order, rescanning from the
    /// start of the argument after each replacement. What would never end is bounded: an empty
    /// placeholder replaces nothing, a value that holds its own placeholder is filled in by one
    /// pass from left to right, and after Limits::MostReplacements, or beyond
    /// Limits::LongestArgument, an argument stays as it is. Returns false if one of the latter two
    /// took effect.
    bool substitute(QStringList* args) const;

  private:
    std::vector<ForLoop> m_loops;
};
