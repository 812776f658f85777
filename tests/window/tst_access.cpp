#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QDockWidget>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBrowser>
#include <algorithm>

#include "BatchRun.h"
#include "Controls.h"
#include "TestMain.h"
#include "display/DispA.h"
#include "window/GuideWindow.h"

// What a screen reader says of the controls.
namespace {

bool isControl(const QWidget* w) {
    const bool isKind =
        qobject_cast<const QAbstractButton*>(w) || qobject_cast<const QLineEdit*>(w) ||
        qobject_cast<const QComboBox*>(w) || qobject_cast<const QAbstractSlider*>(w) ||
        qobject_cast<const QPlainTextEdit*>(w) || qobject_cast<const QAbstractItemView*>(w) ||
        qobject_cast<const DispA*>(w) || qobject_cast<const QTextBrowser*>(w);
    const QString parent = w->parent()->objectName();
    return isKind && !qobject_cast<const QScrollBar*>(w) && !w->objectName().isEmpty() &&
           !w->objectName().startsWith("qt_") && !parent.startsWith("qt_") &&
           !w->parent()->inherits("QTabBar") && !w->parent()->inherits("QComboBoxPrivateContainer");
}

/// As accessibility asks for it: a name of its own, a text, or the label that it is the buddy of.
QString spokenName(const QWidget* w) {
    QString name = w->accessibleName();
    if (name.isEmpty() && qobject_cast<const QAbstractButton*>(w)) {
        name = w->property("text").toString();
    }
    const auto labels = w->window()->findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        if (name.isEmpty() && label->buddy() == w) {
            name = label->text();
        }
    }
    return name.remove('&').trimmed();
}

/// The window, the dock, or the part of it with a name of its own.
QWidget* panelOf(QWidget* w) {
    for (w = w->parentWidget(); !w->isWindow(); w = w->parentWidget()) {
        if (!w->accessibleName().isEmpty() || qobject_cast<QDockWidget*>(w)) {
            break;
        }
    }
    return w;
}

}  // namespace

class TestAccess : public QObject {
    Q_OBJECT

  private slots:
    void everyControlHasANameOfItsOwn() {
        Body body;
        body.show();
        for (int i = 0; i < 3; ++i) {
            analyzerWindow()->addNewRef();
        }
        GuideWindow guide;
        QStringList nameless;
        QStringList twice;
        QSet<QPair<QWidget*, QString>> names;
        int checked = 0;
        const auto all = QApplication::allWidgets();
        for (QWidget* w : all) {
            if (w->isWindow() || !isControl(w) || w->window()->inherits("QFileDialog")) {
                continue;
            }
            ++checked;
            const QString name = spokenName(w);
            const QString place = w->window()->objectName() + '/' +
                                  w->parentWidget()->objectName() + '/' + w->objectName();
            if (name.isEmpty()) {
                nameless << place;
            } else if (names.contains({panelOf(w), name})) {
                twice << place + " is " + name;
            }
            names.insert({panelOf(w), name});
        }
        QVERIFY(checked > 100);
        for (const char* field : {"HWidth", "VWidth", "Value", "DeGlitchFactor", "DeGlitchRatio",
                                  "EngPattern", "EdgeEeV", "RAAtEV", "DeltaE", "FrameEnergy"}) {
            const auto labels = body.findChildren<QLabel*>();
            const bool isLabelled = std::any_of(labels.begin(), labels.end(), [&](QLabel* label) {
                return label->buddy() != nullptr && label->buddy()->objectName() == field;
            });
            QVERIFY2(isLabelled, field);
        }
        QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join('\n')));
        QVERIFY2(twice.isEmpty(), qPrintable(twice.join('\n')));
    }
};

TARNWICK_TEST_MAIN(QApplication, TestAccess)
#include "tst_access.moc"
