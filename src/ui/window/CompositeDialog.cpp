#include "window/CompositeDialog.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QMainWindow>

#include "measurement/CompositeDisplay.h"

CompositeDialog::CompositeDialog(Measurement& measurement, QWidget* parent)
    : QDialog(parent), m_measurement(measurement), m_message(new QLabel(this)) {
    setObjectName(QStringLiteral("Composite"));
    setWindowTitle(tr("Composite"));
    auto* layout = new QFormLayout(this);
    const QString labels[] = {tr("&Red"), tr("&Green"), tr("&Blue")};
    const char* const names[] = {"Red", "Green", "Blue"};
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        m_colors[i] = new QComboBox(this);
        m_colors[i]->setObjectName(QString::fromLatin1(names[i]));
        m_colors[i]->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        layout->addRow(labels[i], m_colors[i]);
        connect(m_colors[i], QOverload<int>::of(&QComboBox::activated), this,
                &CompositeDialog::choose);
    }
    m_message->setObjectName(QStringLiteral("Message"));
    m_message->setWordWrap(true);
    layout->addRow(m_message);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addRow(buttons);
    connect(&measurement, &Measurement::changed, this, &CompositeDialog::changed);
}

void CompositeDialog::open() {
    if (!m_measurement.settings().composite.isOn()) {
        m_measurement.set(&Settings::composite, firstReferences());
    }
    m_measurement.set(&Settings::shown, Shown::Result);
    fillIn();
    show();
    raise();
    activateWindow();
}

Composite CompositeDialog::firstReferences() const {
    Composite composite;
    std::size_t color = 0;
    for (int i = 0; i < m_measurement.referenceCount() && color < m_colors.size(); ++i) {
        if (!judgeComposite(m_measurement, Composite{{i, -1, -1}}).failed()) {
            composite.references[color++] = i;
        }
    }
    return composite;
}

void CompositeDialog::changed(Measurement::Changes what) {
    if (isVisible() && what & (Measurement::Setting | Measurement::References)) {
        fillIn();
    }
}

void CompositeDialog::fillIn() {
    const Composite& composite = m_measurement.settings().composite;
    m_showing = true;
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        QComboBox* box = m_colors[i];
        box->clear();
        box->addItem(tr("none"), -1);
        for (const auto& reference : m_measurement.references()) {
            box->addItem(QFileInfo(reference->file().name).fileName(), box->count() - 1);
        }
        box->setCurrentIndex(std::max(0, box->findData(composite.references[i])));
    }
    m_showing = false;
    m_message->setText(judgeComposite(m_measurement, composite).texts().join(QLatin1Char('\n')));
}

void CompositeDialog::choose() {
    if (m_showing) {
        return;
    }
    Composite composite;
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        composite.references[i] = m_colors[i]->currentData().toInt();
    }
    m_measurement.set(&Settings::composite, composite);
    m_measurement.set(&Settings::shown, Shown::Result);
}

QAction* addCompositeAction(QMainWindow* window, Measurement& measurement) {
    auto* action = new QAction(CompositeDialog::tr("&Composite..."), window);
    action->setObjectName(QStringLiteral("actionComposite"));
    window->addAction(action);
    QObject::connect(action, &QAction::triggered, window, [window, &measurement] {
        auto* dialog = window->findChild<CompositeDialog*>();
        if (dialog == nullptr) {
            dialog = new CompositeDialog(measurement, window);
        }
        dialog->open();
    });
    const auto describe = [action, &measurement] {
        bool hasMap = false;
        for (int i = 0; i < measurement.referenceCount(); ++i) {
            hasMap |= !judgeComposite(measurement, Composite{{i, -1, -1}}).failed();
        }
        action->setEnabled(hasMap);
        const QString own =
            CompositeDialog::tr("Up to three references as red, green and blue in one picture");
        action->setToolTip(hasMap ? own
                                  : own + QLatin1Char('\n') +
                                        CompositeDialog::tr("There are no results of a fit yet."));
    };
    QObject::connect(&measurement, &Measurement::changed, action, describe);
    describe();
    return action;
}
