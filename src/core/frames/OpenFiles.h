#pragma once

#include <condition_variable>
#include <list>
#include <mutex>
#include <unordered_map>

#include "frames/FileState.h"

/// Files that are read at places of them, some rows at a time. They stay open from one time to the
/// next: those used last, and never more than half of what the process may have open
/// (RLIMIT_NOFILE). Any thread may call any of it.
class OpenFiles {
  public:
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
        Lease(OpenFiles* files, const void* owner, int descriptor, int error);

        OpenFiles* m_files;
        const void* m_owner;
        int m_descriptor;
        int m_error;
    };

    /// Those of the process.
    static OpenFiles& ofProcess();

    /// Opens a file, as long as it is what it was, or finds it open. Each owner has one file. Where
    /// all that may be open are in use, waits for one of them.
    Lease open(const void* owner, const FileState& file);
    /// Before the owner goes; no lease of his is left.
    void forget(const void* owner);

    /// How many there are, never more than half of RLIMIT_NOFILE.
    std::size_t count() const;

  private:
    struct Entry {
        const void* owner;
        int descriptor;  // -1 while it is being opened
        int users;
    };
    using Entries = std::list<Entry>;

    OpenFiles() = default;
    bool closeOldest();
    void erase(Entries::iterator entry);
    int openNow(const FileState& file, int* error);
    void giveBack(const void* owner);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Entries m_entries;  // used last: first
    std::unordered_map<const void*, Entries::iterator> m_places;
};
