#include "imagedata/SelectDataFiles.h"

#include <QDateTime>
#include <QDebug>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include "app/Globals.h"
#include "imagedata/EnergyFromName.h"
#include "imagedata/FileListing.h"
#include "ui_SelectDataFiles.h"

namespace {
constexpr qint64 SettledAfterMs = 1000;  // the detector may still be writing a younger file
}

SelectDataFiles::SelectDataFiles(QWidget* parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::SelectDataFiles>()),
      m_dialog(new QFileDialog(this, QString(), DataDir)),
      m_pattern(std::make_unique<QRegularExpression>()) {
    m_ui->setupUi(this);
    m_ui->SelectUnit->addItem(QStringLiteral("eV"), 1.0);
    m_ui->SelectUnit->addItem(QStringLiteral("keV"), 1000.0);
    const int patternWidth =
        fontMetrics().horizontalAdvance(m_ui->EngPattern->text() + QLatin1Char('M'));
    m_ui->EngPattern->setMinimumWidth(patternWidth);
    m_ui->EngPattern->setMaximumWidth(patternWidth + patternWidth / 4);
    // The list shows the beginning of a long path, its tool tip the whole.
    connect(m_ui->Selected, &QComboBox::currentTextChanged, m_ui->Selected, &QWidget::setToolTip);
    m_dialog->setFileMode(QFileDialog::ExistingFiles);
    m_dialog->setAcceptMode(QFileDialog::AcceptOpen);
    m_dialog->setNameFilters(
        {tr("IMG Files (*.img)"), tr("Tiff Files (*.tif *.tiff)"), tr("Any Files (* *.*)")});

    connect(m_ui->Selected, SIGNAL(currentIndexChanged(int)), this,
            SIGNAL(currentIndexChanged(int)));
    connect(m_ui->Select, SIGNAL(clicked()), m_dialog, SLOT(show()));
    connect(m_ui->Clear, &QPushButton::clicked, this, &SelectDataFiles::clear);
    connect(m_ui->LoadNewFiles, &QPushButton::clicked, this, &SelectDataFiles::loadNewFiles);
    connect(m_dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        emit filesSelected(files, m_ui->AddFiles->isChecked());
    });
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
    m_ui->LoadNewFiles->setEnabled(count() > 0 && !m_loading);
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
