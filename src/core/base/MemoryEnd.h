#pragma once

#include <QtGlobal>
#include <functional>
#include <new>

#include "base/LargeMemory.h"

class QEvent;
class QObject;

// The end of a program whose memory has run out where nobody can go on: one line on standard error
// that says so, no file left unfinished, exit code 1.

/// Before any thread is made. `program` stays; it begins the line.
void endInOrderWithoutMemory(const char* program);

/// What is done first at such an end, as removing files that are being written; takes no memory.
void beforeEndWithoutMemory(void (*action)() noexcept);

/// Ends the program.
[[noreturn]] void endWithoutMemory() noexcept;

/// Where less of the limit is left than a program needs for what cannot be refused, as starting
/// what draws letters, ends it. `bytes`: what is about to be needed.
void needAddressSpace(quint64 bytes) noexcept;

/// A Qt application whose slots may run out of memory: exceptions do not get into Qt's event loop.
/// What was refused an array fails and is said by `refused`, if there is one; else the program
/// ends.
template <class Application>
class WithoutMemoryEnds : public Application {
  public:
    using Application::Application;
    std::function<void()> refused;

    bool notify(QObject* receiver, QEvent* event) override try {
        return Application::notify(receiver, event);
    } catch (const NotEnoughMemory&) {
        if (!refused) {
            endWithoutMemory();
        }
        refused();
        return true;
    } catch (const std::bad_alloc&) {
        endWithoutMemory();
    }
};
