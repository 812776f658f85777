#pragma once

#include <QStringList>

class Body;
struct CmdLine;

/// The arguments of a batch line: a missing one reads as an empty text, text that is no number as
/// 0 (said in the debug log).
class CommandArgs {
  public:
    explicit CommandArgs(const QStringList& args) : m_args(args) {}
    QString text(int i) const { return m_args.value(i); }
    int integer(int i) const;
    double real(int i) const;
    bool flag(int i) const { return integer(i) != 0; }
    QStringList from(int i) const { return m_args.mid(i); }

  private:
    QStringList m_args;
};

/// The operations of the 49 batch commands. Each sets what a user would set or calls what a button
/// calls, so that the windows show what a batch has done.
class CommandHandlers {
  public:
    explicit CommandHandlers(Body& body) : m_body(body) {}

    enum class Answer { AtOnce, WhenDone };

    /// Carries out one line. WhenDone: the line is answered when the work that it has started is
    /// over, which may already be so.
    Answer run(const CmdLine& cmd);

  private:
    Answer load(const CmdLine& cmd, bool i1, const QStringList& files);
    Answer execLcf(const CmdLine& cmd);
    void setLcfStd(const CommandArgs& args);
    void selectRegion(const CommandArgs& args);
    void runUnknown(const CmdLine& cmd);

    Body& m_body;
};
