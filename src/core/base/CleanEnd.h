#pragma once

#include <QObject>
#include <memory>

/// Turns the wish of the system or of the terminal that the program should end (Ctrl-C, a
/// terminate or hang-up signal) into a signal of Qt's, so that files are finished and threads are
/// stopped before it does. Wishes that the program was started to ignore stay ignored. A second
/// wish of the same kind ends the program at once. One object at a time; where there are no such
/// signals it does nothing.
class CleanEnd : public QObject {
    Q_OBJECT

  public:
    explicit CleanEnd(QObject* parent = nullptr);
    ~CleanEnd() override;

  signals:
    /// Emitted from the event loop of the object's thread; number is that of the signal (2 for
    /// Ctrl-C).
    void requested(int number);

  private:
    struct Handlers;
    std::unique_ptr<Handlers> m_handlers;
};
