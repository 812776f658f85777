#pragma once

#include <QTextBrowser>

/// The user guide in a window of its own: the documents of a folder, with their pictures and links.
class GuideWindow : public QTextBrowser {
    Q_OBJECT

  public:
    /// The first page of the guide that belongs to this program: as installed, or in the sources
    /// while the program is in a build folder below them. Empty when there is none.
    static QString firstPage();

    explicit GuideWindow(QWidget* parent = nullptr);

    /// Pictures are made to fit into the window.
    QVariant loadResource(int type, const QUrl& name) override;

  private:
    void scrollToHeading(const QUrl& url);
};
