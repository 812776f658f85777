#include "spectra/LiveCounts.h"

#include <QDebug>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace {

/// What one thread has made less what it has dropped. Only that thread writes it, so that no
/// operation locks the memory; one may well be below 0.
struct alignas(64) Counts {
    std::atomic<qint64> storedPoints{0};  // those in buffers; the extremes follow from the spectra
    std::atomic<qint64> spectra{0};
    std::atomic<qint64> xafsSpectra{0};
};

/// The counts of all threads that there have been. Those of a thread that has ended stay and are
/// carried on by the next new thread.
struct Register {
    std::mutex mutex;
    std::vector<std::unique_ptr<Counts>> all;
    std::vector<Counts*> unused;

    Counts* take() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (unused.empty()) {
            all.push_back(std::make_unique<Counts>());
            unused.reserve(all.size());
            return all.back().get();
        }
        Counts* counts = unused.back();
        unused.pop_back();
        return counts;
    }
    void giveBack(Counts* counts) {
        const std::lock_guard<std::mutex> lock(mutex);
        unused.push_back(counts);
    }
    qint64 sum(std::atomic<qint64> Counts::*member) {
        const std::lock_guard<std::mutex> lock(mutex);
        qint64 total = 0;
        for (const auto& counts : all) {
            total += ((*counts).*member).load(std::memory_order_relaxed);
        }
        return total;
    }
};

Register& allCounts() {
    static Register* const instance = new Register;  // spectra may outlive every other static
    return *instance;
}

thread_local Counts* t_counts = nullptr;

struct Owner {
    Owner() { t_counts = allCounts().take(); }
    ~Owner() {
        allCounts().giveBack(t_counts);
        t_counts = nullptr;
    }
};

Counts& countsOfThread() {
    if (t_counts == nullptr) {
        static thread_local bool begun = false;
        if (begun) {  // a spectrum that is dropped after the thread's own data
            t_counts = allCounts().take();
        } else {
            begun = true;
            static thread_local Owner owner;
        }
    }
    return *t_counts;
}

void add(std::atomic<qint64>& count, qint64 n) {
    count.store(count.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
}

}  // namespace

qint64 liveSpoints() {
    constexpr qint64 Extremes = 2;  // a spectrum holds two points of its own
    return allCounts().sum(&Counts::storedPoints) + Extremes * liveSpectra();
}
qint64 liveSpectra() {
    return allCounts().sum(&Counts::spectra);
}
qint64 liveXafsSpectra() {
    return allCounts().sum(&Counts::xafsSpectra);
}

void logObjectCounts() {
    qDebug().noquote() << "object count : Spoint : " << liveSpoints();
    qDebug().noquote() << "object count : Spectrum : " << liveSpectra();
    qDebug().noquote() << "Count : Xafs Spectrum : " << liveXafsSpectra();
}

namespace livecounts {
void addSpoints(qint64 n) {
    add(countsOfThread().storedPoints, n);
}
void addSpectra(qint64 n) {
    add(countsOfThread().spectra, n);
}
void addXafsSpectra(qint64 n) {
    add(countsOfThread().xafsSpectra, n);
}
}  // namespace livecounts
