#pragma once

#include <QTextBrowser>

/// A page of the guide, with its pictures and links; what is searched for is marked in it.
class GuideBrowser : public QTextBrowser {
    Q_OBJECT

  public:
    explicit GuideBrowser(QWidget* parent = nullptr);

    /// Pictures are made to fit into the window.
    QVariant loadResource(int type, const QUrl& name) override;

    /// Marks these words wherever they stand on this page and those that come; none when empty.
    void mark(const QString& words);
    /// Shows the place of the words in a page and marks it before the others.
    void goTo(const QUrl& page, int position);

  private:
    void scrollToHeading(const QUrl& url);
    void showMarks();

    QString m_words;
    int m_current = -1;  // where the words stand that were gone to
};
