#pragma once

#include <QComboBox>
#include <QLineEdit>

// Fields that hold the names of files. A path that is too long for them loses its beginning, so
// that the file's name can be read; the text of the field is the whole path, and so is its tool
// tip.

/// A field to read.
class PathField : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A choice of files, in its list, too.
class PathBox : public QComboBox {
  public:
    explicit PathBox(QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
};
