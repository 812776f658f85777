#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <csignal>

/// While it lives, who opens the file waits for three quarters of a minute, as for one whose server
/// is away: it is leased to this process, which does not give it up.
class DeadFile {
  public:
    explicit DeadFile(const QString& name)
        : m_handler(std::signal(SIGIO, SIG_IGN)),
          m_file(::open(QFile::encodeName(name).constData(), O_RDWR | O_CLOEXEC)) {
        m_isDead = ::fcntl(m_file, F_SETLEASE, F_WRLCK) == 0;
    }
    ~DeadFile() {
        ::close(m_file);
        std::signal(SIGIO, m_handler);
    }
    DeadFile(const DeadFile&) = delete;
    DeadFile& operator=(const DeadFile&) = delete;

    /// False where the file system knows no leases.
    bool isDead() const { return m_isDead; }
    /// Somebody waits to open it, or has waited.
    bool isAwaited() const { return ::fcntl(m_file, F_GETLEASE) != F_WRLCK; }

  private:
    void (*m_handler)(int);
    int m_file;
    bool m_isDead = false;
};
