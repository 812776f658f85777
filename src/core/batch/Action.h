#pragma once

#include <QHash>
#include <QStringList>

#include "measurement/Measurement.h"

/// The arguments of a batch line, which judgeArguments() has accepted: numbers are numbers, and
/// only those are missing that a line may do without.
class CommandArgs {
  public:
    explicit CommandArgs(const QStringList& args) : m_args(args) {}
    QString text(int i) const { return m_args.value(i); }
    int count() const { return m_args.size(); }
    int integer(int i) const { return text(i).toInt(); }
    double real(int i) const { return text(i).toDouble(); }
    bool flag(int i) const { return integer(i) != 0; }
    /// The argument that is NEW in any case: frames are replaced.
    bool isNew(int i) const;
    StackId stack(int i) const;
    QStringList from(int i) const { return m_args.mid(i); }

  private:
    QStringList m_args;
};

/// A batch line while it is carried out.
struct Action {
    Measurement& measurement;
    CommandArgs args;
    /// Digests that files should have, by absolute path; from the record that is being run.
    const QHash<QString, QByteArray>& digests;
    Work awaited;  ///< the line is answered when this has ended
    Outcome outcome;

    void fail(const QString& text) { outcome.failures << text; }
    /// Warns when a file is not the one that the record was made with.
    void expect(const FileInput& file);
};
