#pragma once

#include <QString>
#include <QVector>

/// A page of the guide as it is shown and searched: Markdown, in which the ends of lines inside
/// Japanese text, which are no blanks, are taken out. Empty when the file cannot be read.
QString guidePage(const QString& fileName);

/// A place of the guide at which the words of a search stand.
struct GuideHit {
    QString page;      ///< its file
    QString chapter;   ///< the first heading of the page
    QString sentence;  ///< what the words stand in
    int position = 0;  ///< of their first letter in the document that is made of the page
};

/// The chapters of a guide, to search in: the pages that its contents link to, and the contents
/// themselves.
class GuideText {
  public:
    explicit GuideText(const QString& contents);

    /// Every place with these words, whatever their case, in order of the chapters; no more than
    /// `most`. None for words of nothing but blanks.
    QVector<GuideHit> find(const QString& words, int most) const;

  private:
    struct Page {
        QString file;
        QString title;
        QString text;  ///< a character for each position of the document
    };
    void add(const QString& file);

    QVector<Page> m_pages;
};
