#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

#include "TestMain.h"
#include "panels/XafsFileSelect.h"

class TestXafsFileSelect : public QObject {
    Q_OBJECT

  private slots:
    void aChoiceIsShownAndAnnounced() {
        XafsFileSelect select;
        QSignalSpy chosen(&select, &XafsFileSelect::newFile);
        auto* field = select.findChild<QLineEdit*>("Selected");
        QVERIFY(!select.isSelected());
        select.findChild<QPushButton*>("Select")->click();
        auto* dialog = select.findChild<QFileDialog*>();
        QVERIFY(dialog->isVisible());
        emit dialog->fileSelected("/a/b.dat");
        select.load("/a/b.dat");
        QCOMPARE(chosen.size(), 2);
        QCOMPARE(field->text(), QString("/a/b.dat"));
        QTest::mouseClick(select.findChild<QPushButton*>("Clear"), Qt::LeftButton);
        QCOMPARE(field->text(), QString());
        QVERIFY(select.isSelected());
    }

    void useIsAnnouncedAndCanBeHidden() {
        XafsFileSelect select;
        QSignalSpy used(&select, &XafsFileSelect::changedUse);
        auto* box = select.findChild<QCheckBox*>("Use");
        box->click();
        select.setUse(false);
        QCOMPARE(used.size(), 2);
        QCOMPARE(used.at(0).at(0).toBool(), true);
        QVERIFY(!select.use());
        select.showUse(false);
        QVERIFY(box->isHidden());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestXafsFileSelect)
#include "tst_xafsfileselect.moc"
