#pragma once

#include <QDir>
#include <QStringList>

/// The folders in which a batch is run, one after another; without a name the one in which the
/// program was started.
class Folders {
  public:
    /// Names are relative to the folder of now.
    explicit Folders(const QStringList& names) : m_names(names) {}

    int count() const { return m_names.isEmpty() ? 1 : m_names.size(); }
    bool areSeveral() const { return count() > 1; }
    QString name(int i) const { return m_names.value(i); }
    /// "folder 3 of 12"; empty for the only one.
    QString place(int i) const;
    /// Makes it the current folder; false: it cannot be entered.
    bool enter(int i) const;

  private:
    QDir m_start = QDir::current();
    QStringList m_names;
};
