#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// What other threads want done in the thread that this lives in: calls are carried out by its
/// event loop, one an event, in the order in which they were posted.
///
/// A call travels through a queue with a mutex of its own; Qt is only asked to wake the thread up.
/// All that the poster has done before is thus seen by the call, and a tool that watches our code
/// but not Qt's sees that it is.
class Inbox : public QObject {
  public:
    using Call = std::function<void()>;

    explicit Inbox(QObject* parent = nullptr);
    /// Calls that have not been carried out are dropped.
    ~Inbox() override;

    /// The way in, for whoever may live longer than the inbox. To be copied in the inbox's thread
    /// or handed over as any value is.
    class Slit {
      public:
        /// From any thread. Nothing happens once the inbox is gone.
        void post(Call call) const;

      private:
        friend class Inbox;
        struct Shared;
        std::shared_ptr<Shared> m_shared;
    };
    const Slit& slit() const { return m_slit; }

    void post(Call call) const { m_slit.post(std::move(call)); }

  protected:
    bool event(QEvent* event) override;

  private:
    friend class InboxPause;
    void wake();

    Slit m_slit;
};

/// While one lives, the inboxes of its thread carry nothing out; they do it later, each in its
/// order. For who waits in the midst of something, with an event loop. One at a time.
class InboxPause {
  public:
    InboxPause();
    ~InboxPause();
    InboxPause(const InboxPause&) = delete;
    InboxPause& operator=(const InboxPause&) = delete;

  private:
    friend class Inbox;
    std::vector<QPointer<Inbox>> m_woken;
};
