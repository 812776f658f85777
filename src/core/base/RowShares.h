#pragma once

#include <atomic>
#include <functional>

/// The rows of an image, given out to threads a few at a time.
class RowShares {
  public:
    /// Once *stop is true no more rows are given out; null: all of them are.
    explicit RowShares(int rows, const std::atomic<bool>* stop = nullptr)
        : m_rows(rows), m_stop(stop) {}

    /// The next rows, *first to *end - 1; false when there are none left. From any thread.
    bool take(int* first, int* end);

  private:
    int m_rows;
    const std::atomic<bool>* m_stop;
    std::atomic<int> m_next{0};
};

/// Calls work() in this many threads, the calling one among them, and waits for all. With fewer
/// threads where the system gives no more.
void inThreads(int threads, const std::function<void()>& work);
