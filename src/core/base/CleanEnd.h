#pragma once

#include <QByteArray>
#include <QObject>
#include <chrono>
#include <memory>

/// Lets writing to a pipe that nobody reads any more, and to a file beyond the limit of the user,
/// fail as on a full disk instead of ending the program.
void letWritesFail();

/// Turns the wish of the system or of the terminal that the program should end (Ctrl-C, a
/// terminate or hang-up signal) into a signal of Qt's, so that files are finished and threads are
/// stopped before it does. Wishes that the program was started to ignore stay ignored. A second
/// wish of the same kind ends the program at once.
///
/// Whatever the program waits for then, such as a file whose server is away: two seconds later it
/// has ended. A thread of its own sees to that; where none can be made such a wait goes on.
///
/// One object at a time, gone after all threads that were made meanwhile; where there are no such
/// signals it does nothing.
class CleanEnd : public QObject {
    Q_OBJECT

  public:
    static constexpr std::chrono::seconds Patience{2};

    /// @param lastAct done before the program is ended by force, in another thread than the one
    /// that may hang: it must not wait for anything
    explicit CleanEnd(void (*lastAct)() noexcept = nullptr, QObject* parent = nullptr);
    ~CleanEnd() override;

    /// What standard output gets when the program is ended by force; empty: nothing.
    void setLastWords(const QByteArray& text);
    /// The program is closing: it ends with this code by then.
    void expectEnd(int exitCode);

  signals:
    /// Emitted from the event loop of the object's thread; number is that of the signal (2 for
    /// Ctrl-C).
    void requested(int number);

  private:
    struct Handlers;
    std::unique_ptr<Handlers> m_handlers;
};
