#include "panels/SelectDataFiles.h"

#include <QDateTime>
#include <QDebug>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include "base/Globals.h"
#include "display/Availability.h"
#include "files/FileListing.h"
#include "frames/EnergyFromName.h"
#include "ui_SelectDataFiles.h"

namespace {
constexpr qint64 SettledAfterMs = 1000;  // the detector may still be writing a younger file
constexpr int HeldDownMs = 700;          // when a press is no click any more
constexpr int RepeatMs = 5000;
}  // namespace

SelectDataFiles::SelectDataFiles(QWidget* parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::SelectDataFiles>()),
      m_dialog(new QFileDialog(this)),
      m_pattern(std::make_unique<QRegularExpression>()) {
    m_ui->setupUi(this);
    m_ui->SelectUnit->addItem(QStringLiteral("eV"), 1.0);
    m_ui->SelectUnit->addItem(QStringLiteral("keV"), 1000.0);
    const int patternWidth =
        fontMetrics().horizontalAdvance(m_ui->EngPattern->text() + QLatin1Char('M'));
    m_ui->EngPattern->setMinimumWidth(patternWidth);
    m_ui->EngPattern->setMaximumWidth(patternWidth + patternWidth / 4);
    // The list shows the beginning of a long path, its tool tip the whole.
    const QString noFile = m_ui->Selected->toolTip();
    connect(m_ui->Selected, &QComboBox::currentTextChanged, this,
            [this, noFile](const QString& name) {
                m_ui->Selected->setToolTip(name.isEmpty() ? noFile : name);
            });
    m_dialog->setDirectory(DataDir);
    m_dialog->setFileMode(QFileDialog::ExistingFiles);
    m_dialog->setAcceptMode(QFileDialog::AcceptOpen);
    m_dialog->setNameFilters(
        {tr("IMG Files (*.img)"), tr("Tiff Files (*.tif *.tiff)"), tr("Any Files (* *.*)")});
    m_dialog->selectNameFilter(m_dialog->nameFilters().at(1));  // the kind that can be read

    connect(m_ui->Selected, SIGNAL(currentIndexChanged(int)), this,
            SIGNAL(currentIndexChanged(int)));
    connect(m_ui->Select, SIGNAL(clicked()), m_dialog, SLOT(show()));
    connect(m_ui->Clear, &QPushButton::clicked, this, &SelectDataFiles::clear);
    connectLoadNew();
    connect(m_dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        emit filesSelected(files, m_ui->AddFiles->isChecked());
    });
    setFocusProxy(m_ui->Select);
    updateButtons();
}

SelectDataFiles::~SelectDataFiles() = default;

void SelectDataFiles::setLabel(const QString& text) {
    m_ui->Label->setText(text);
    m_dialog->setWindowTitle(text);
}

int SelectDataFiles::count() const {
    return m_ui->Selected->count();
}
int SelectDataFiles::currentIndex() const {
    return m_ui->Selected->currentIndex();
}

void SelectDataFiles::setLoading(bool loading) {
    m_loading = loading;
    updateButtons();
}

void SelectDataFiles::updateButtons() {
    m_ui->Count->setText(QString::number(count()));
    if (count() == 0) {
        repeatLoadNew(false);
    }
    // While it repeats it must stay alive, to be switched off.
    const bool usable = m_repeat.isActive() || (count() > 0 && !m_loading);
    setUsable(m_ui->LoadNewFiles, usable      ? QString()
                                  : m_loading ? tr("Wait until the stack is loaded.")
                                              : tr("Select the first files first."));
}

double SelectDataFiles::newFile(const QString& fname) {
    if (m_pattern->pattern() != m_ui->EngPattern->text()) {
        m_pattern->setPattern(m_ui->EngPattern->text());
    }
    const double number = numberFromName(fname, *m_pattern).value_or(count() - 1);
    const double energy = number * m_ui->SelectUnit->currentData().toDouble();
    qDebug().noquote() << "energy from file name" << fname << ":" << energy;
    m_ui->Selected->addItem(fname, energy);
    updateButtons();
    return energy;
}

void SelectDataFiles::clear() {
    emit clearRequested();
    clearFiles();
}

void SelectDataFiles::clearFiles() {
    m_ui->Selected->clear();
    updateButtons();
}

void SelectDataFiles::prev() {
    select(currentIndex() - 1);
}
void SelectDataFiles::next() {
    select(currentIndex() + 1);
}

void SelectDataFiles::select(int i) {
    if (i >= 0 && i < count()) {
        m_ui->Selected->setCurrentIndex(i);
    }
}

void SelectDataFiles::connectLoadNew() {
    QPushButton* button = m_ui->LoadNewFiles;
    m_hold.setSingleShot(true);
    m_hold.setInterval(HeldDownMs);
    m_repeat.setInterval(RepeatMs);
    connect(button, &QPushButton::pressed, this, [this] {
        m_wasHeld = false;
        m_hold.start();
    });
    connect(button, &QPushButton::released, &m_hold, &QTimer::stop);
    connect(&m_hold, &QTimer::timeout, this, [this] { m_wasHeld = true; });
    connect(&m_repeat, &QTimer::timeout, this, [this] {
        if (!m_loading) {
            loadNewFiles();
        }
    });
    connect(button, &QPushButton::clicked, this, [this] {
        const bool repeats = m_repeat.isActive();
        repeatLoadNew(m_wasHeld && !repeats);
        m_wasHeld = false;
        if (!repeats) {
            loadNewFiles();
        }
        updateButtons();
    });
}

void SelectDataFiles::repeatLoadNew(bool on) {
    on ? m_repeat.start() : m_repeat.stop();
    m_ui->LoadNewFiles->setCheckable(on);
    m_ui->LoadNewFiles->setChecked(on);
}

void SelectDataFiles::loadNewFiles() {
    QSet<QString> listed;
    for (int i = 0; i < count(); ++i) {
        listed.insert(QFileInfo(m_ui->Selected->itemText(i)).absoluteFilePath());
    }
    const QFileInfo last(m_ui->Selected->itemText(count() - 1));
    const QDateTime now = QDateTime::currentDateTime();
    QStringList fresh;
    for (const QString& file : listImageFiles(last.path(), {})) {
        const QFileInfo info(file);
        if (info.suffix().compare(last.suffix(), Qt::CaseInsensitive) == 0 &&
            !listed.contains(info.absoluteFilePath()) &&
            info.lastModified().msecsTo(now) >= SettledAfterMs) {
            fresh << file;
        }
    }
    if (!fresh.isEmpty()) {
        emit filesSelected(fresh, true);
    }
}
