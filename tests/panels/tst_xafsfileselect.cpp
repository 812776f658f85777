#include <QLineEdit>
#include <QSignalSpy>

#include "Controls.h"
#include "TestMain.h"
#include "panels/XafsFileSelect.h"

class TestXafsFileSelect : public QObject {
    Q_OBJECT

  private slots:
    void aChoiceIsShownAndAnnounced() {
        XafsFileSelect select;
        QSignalSpy chosen(&select, &XafsFileSelect::newFile);
        QSignalSpy used(&select, &XafsFileSelect::changedUse);
        const auto* field = control<QLineEdit>("Selected", &select);
        QVERIFY(!select.isSelected());
        press("Select", &select);
        answer({"/a/b.dat"});
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(field->text(), QString("/a/b.dat"));
        press("Clear", &select);
        QCOMPARE(field->text(), QString());
        QVERIFY(select.isSelected());
        press("Use", &select);
        QVERIFY(select.use());
        select.setUse(false);
        QCOMPARE(used.size(), 2);
        select.showUse(false);
        QVERIFY(control<QWidget>("Use", &select)->isHidden());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestXafsFileSelect)
#include "tst_xafsfileselect.moc"
