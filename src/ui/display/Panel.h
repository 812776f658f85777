#pragma once

#include <QWidget>
#include <functional>
#include <utility>

/// What a panel is asked for, with show(), hide() and open().
enum class PanelAsked { Hide, Open, Show };

/// Whether a panel is open: the dock that it lies in is not closed. A panel behind a tab is open,
/// as is one of a main window that is not on the screen.
bool isPanelOpen(const QWidget& panel);

/// A window of its own, until it is put into a dock: from then on show() and hide() are handed to
/// what keeps the dock, however often they are called.
template <class Base>
class Panel : public Base {
  public:
    using Base::Base;

    using Keeper = std::function<void(PanelAsked)>;
    void setKeeper(const Keeper& keeper) { m_keeper = keeper; }

    bool isOpen() const { return isPanelOpen(*this); }

    /// Opens it, and leaves a tab in front of it where it is.
    void open() { ask(PanelAsked::Open, true); }

    void setVisible(bool visible) override {
        ask(visible ? PanelAsked::Show : PanelAsked::Hide, visible);
    }

  private:
    void ask(PanelAsked what, bool visible) {
        if (m_keeper) {
            m_keeper(what);
        } else {
            Base::setVisible(visible);
        }
    }

    Keeper m_keeper;
};
