#pragma once

#include <QObject>
#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "absorption/PixelPass.h"
#include "base/Inbox.h"
#include "measurement/FrameView.h"

/// What an I1 frame shows in place of its counts, one number a pixel.
struct FrameImage {
    FrameView::Kind kind = FrameView::Kind::Absorption;
    double from = 0.0;  ///< eV, of a difference
    double to = 0.0;    ///< eV, of a difference; else of the frame
    PixelValues pixels;
    double low = 0.0;  ///< percentiles 1 and 99 of what is a number
    double high = 0.0;
    quint64 serial = 0;  ///< another for every image
};

/// Makes the images of frames when they are asked for, in threads, and keeps the newest. It lives
/// on the thread of its measurement.
class FrameImages : public QObject {
    Q_OBJECT

  public:
    /// What an image is made of: kind, place of the frame, energies as bits, and the revisions of
    /// frames with dark frames and of the energy map. Equal keys, equal images.
    using Key = std::array<quint64, 6>;

    struct Request {
        FrameView::Kind kind = FrameView::Kind::Absorption;
        double from = 0.0;  ///< as in FrameImage
        double to = 0.0;
        std::shared_ptr<const PixelPass> pass;
        int threads = 1;
    };

    ~FrameImages() override { stop(); }

    /// Asked for what is to be made when there is no image of a key yet.
    using Ask = std::function<Request()>;

    /// The image, made before this returns. Null when memory runs out. Valid, as that of soon(),
    /// until the next call or until the thread's events are handled.
    const FrameImage* now(const Key& key, const Ask& ask);
    /// The image if it is made within a blink; else that of an earlier call, null for none, and
    /// ready() follows. Of requests that come meanwhile the newest counts.
    const FrameImage* soon(const Key& key, const Ask& ask);

    /// Why now() has made none, with a file's name; empty where memory ran out.
    const QString& problem() const { return m_problem; }

    bool isBusy() const { return m_request.has_value(); }

    /// No thread reads frames from here on; the last image stays.
    void stop();
    /// Gives the memory back.
    void forget();

  signals:
    /// An image that soon() did not wait for has been made.
    void ready();

  private:
    void start(const Key& key, const Request& request);
    void make();
    void makeImage();
    void takeOver();
    bool has(const Key& key) const { return m_key == key; }
    const FrameImage* last() const { return m_key ? &m_shown : nullptr; }
    void ended(int generation);

    Inbox m_inbox;
    std::optional<Key> m_key;  // of m_shown
    FrameImage m_shown;
    Key m_wanted{};
    std::optional<Request> m_request;  // of the image under way, of the key m_wanted
    Key m_nextKey{};
    std::optional<Request> m_next;
    FrameImage m_made;  // by the thread; its memory serves again
    bool m_isMade = false;
    QString m_problem;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
    int m_generation = 0;  // of calls that are still on their way
};
