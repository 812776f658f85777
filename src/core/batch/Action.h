#pragma once

#include <QHash>
#include <QStringList>

#include "measurement/Measurement.h"

/// The arguments of a batch line: a missing one reads as an empty text, text that is no number as
/// 0 (said in the debug log).
class CommandArgs {
  public:
    explicit CommandArgs(const QStringList& args) : m_args(args) {}
    QString text(int i) const { return m_args.value(i); }
    int integer(int i) const;
    double real(int i) const;
    bool flag(int i) const { return integer(i) != 0; }
    /// The argument that is NEW in any case: frames are replaced.
    bool isNew(int i) const;
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
