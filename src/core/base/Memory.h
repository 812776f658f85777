#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

// How much memory the program may take. Sizes are in bytes.

/// Half of what the machine has, or of what its cgroup (v1 or v2) may have, whichever is less.
quint64 defaultMemoryLimit();

/// The limit in force: the default one until another is set.
quint64 memoryLimit();
/// Before any work has begun.
void setMemoryLimit(quint64 bytes);

/// What the machine, or the program's cgroup, has left now for what must stay in memory, and no
/// more than a limit that was set leaves; the greatest number where the system does not tell.
quint64 availableMemory();

/// What is resident of the program now; 0 where the system does not tell.
quint64 residentMemory();

/// From now on the heap gives back what is freed of large pieces, and has few parts for threads.
/// Before there are any.
void keepNoFreeMemory();
/// What is free in the heap goes back to the system.
void giveBackFreeMemory();

/// What the limit leaves beside what is resident and what is promised; 0 where nothing is left.
quint64 memoryLeft();

/// Memory that is not resident yet, but will be: maps that are being filled. As long as it is
/// there.
class PromisedMemory {
  public:
    PromisedMemory() = default;
    ~PromisedMemory() { change(0); }
    void change(quint64 bytes);
    PromisedMemory(const PromisedMemory&) = delete;
    PromisedMemory& operator=(const PromisedMemory&) = delete;

  private:
    quint64 m_bytes = 0;
};

/// "4096", "512K", "256M", "1.5G", "2T", also with "B" or "iB" behind: powers of 1024. Nothing for
/// any other text and for sizes below 1.
std::optional<quint64> sizeFromText(const QString& text);

/// For messages: "3.4 GB", "812 MB", in powers of 1024, as sizeFromText() reads them.
QString sizeText(quint64 bytes);
