#pragma once

#include <QVector>
#include <QWidget>
#include <functional>
#include <memory>

#include "window/GuideText.h"

class GuideBrowser;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

/// The user guide in a window of its own: its pages, the ways between them, and a search over all
/// chapters.
class GuideWindow : public QWidget {
    Q_OBJECT

  public:
    /// The first page of the guide that belongs to this program, in the language of the interface:
    /// as installed, or in the sources while the program is in a build folder below them. Empty
    /// when there is none.
    static QString firstPage();

    /// Begins with the first page.
    explicit GuideWindow(QWidget* parent = nullptr);
    ~GuideWindow() override;

    /// Shows a page, named from the first one: "fitting.md#mask". Empty: the first one.
    void showPage(const QString& page);
    GuideBrowser* pages() const { return m_pages; }

  private:
    QHBoxLayout* makeButtons();
    QHBoxLayout* makeSearch();
    QPushButton* addButton(QHBoxLayout* row, const QString& name, const QString& text,
                           const QString& toolTip, const QList<QKeySequence>& keys);
    void addKey(const QKeySequence& keys, const std::function<void()>& act);
    void search(const QString& words);
    void step(int by);
    void showHit(int row);

    GuideBrowser* m_pages;
    QLineEdit* m_words;
    QLabel* m_count;
    QListWidget* m_hits;
    std::unique_ptr<GuideText> m_text;  // read at the first search
    QVector<GuideHit> m_found;
};
