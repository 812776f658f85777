#pragma once

#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>

#include "files/FileState.h"

/// Files that are read at places of them, some rows at a time. They stay open from one time to the
/// next: those opened last, and never more than half of what the process may have open
/// (RLIMIT_NOFILE). Any thread may call any of it; one that finds a file open waits for nobody.
class OpenFiles {
  public:
    /// One file of an owner, opened or not.
    class Place {
      public:
        Place() = default;
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

      private:
        friend class OpenFiles;
        static constexpr int Closed = -1;
        bool take();

        std::atomic<int> m_users{Closed};
        int m_descriptor = -1;  // changes only while it is closed
        bool m_isListed = false;
        std::list<Place*>::iterator m_entry;
    };

    /// A file that stays open for as long as this lives.
    class Lease {
      public:
        Lease(Lease&& other) noexcept;
        ~Lease();
        Lease& operator=(Lease&&) = delete;

        /// -1: it could not be opened.
        int descriptor() const { return m_descriptor; }
        /// Why not; ESTALE: it is another file than it was.
        int error() const { return m_error; }

      private:
        friend class OpenFiles;
        Lease(OpenFiles* files, Place* place, int descriptor, int error);

        OpenFiles* m_files;
        Place* m_place;
        int m_descriptor;
        int m_error;
    };

    /// Those of the process.
    static OpenFiles& ofProcess();

    /// Opens a file, as long as it is what it was, or finds it open. Where all that may be open are
    /// in use, waits for one of them.
    Lease open(Place* place, const FileState& file);
    /// Before the place goes; no lease of it is left.
    void forget(Place* place);

    /// How many there are, never more than half of RLIMIT_NOFILE.
    std::size_t count() const;

  private:
    OpenFiles() = default;
    bool closeOldest();
    void erase(Place* place);
    int openNow(const FileState& file, int* error);
    void giveBack(Place* place);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<Place*> m_places;     // opened last, or being opened: first
    std::atomic<int> m_waiting{0};  // for a file that nobody uses any more
};
