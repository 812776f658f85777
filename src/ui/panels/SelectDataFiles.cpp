#include "panels/SelectDataFiles.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QScopedValueRollback>

#include "display/Availability.h"
#include "display/FolderMemory.h"
#include "measurement/FolderLoad.h"
#include "panels/DroppedFiles.h"
#include "ui_SelectDataFiles.h"

SelectDataFiles::SelectDataFiles(QWidget* parent)
    : QWidget(parent),
      m_ui(std::make_unique<Ui::SelectDataFiles>()),
      m_dialog(new QFileDialog(this)) {
    m_ui->setupUi(this);
    m_ui->SelectUnit->addItem(QStringLiteral("eV"), 1.0);
    m_ui->SelectUnit->addItem(QStringLiteral("keV"), 1000.0);
    const int patternWidth =
        fontMetrics().horizontalAdvance(m_ui->EngPattern->text() + QLatin1Char('M'));
    m_ui->EngPattern->setMinimumWidth(patternWidth);
    m_ui->EngPattern->setMaximumWidth(patternWidth + patternWidth / 4);
    const QString noFile = m_ui->Selected->toolTip();
    connect(m_ui->Selected, &QComboBox::currentTextChanged, this,
            [this, noFile](const QString& name) {
                m_ui->Selected->setToolTip(name.isEmpty() ? noFile : name);
            });
    m_dialog->setFileMode(QFileDialog::ExistingFiles);
    m_dialog->setAcceptMode(QFileDialog::AcceptOpen);
    m_dialog->setNameFilters(
        {tr("IMG Files (*.img)"), tr("Tiff Files (*.tif *.tiff)"), tr("Any Files (* *.*)")});
    m_dialog->selectNameFilter(m_dialog->nameFilters().at(1));  // the kind that can be read

    connect(m_ui->Selected, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SelectDataFiles::changeIndex);
    connect(m_ui->EngPattern, &QLineEdit::textChanged, this, &SelectDataFiles::changeNames);
    connect(m_ui->SelectUnit, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SelectDataFiles::changeNames);
    connect(m_ui->Select, &QPushButton::clicked, m_dialog,
            [this] { FolderMemory::shared().show(m_dialog); });
    connect(m_ui->Clear, &QPushButton::clicked, this, &SelectDataFiles::clear);
    connect(m_ui->LoadNewFiles, &QPushButton::clicked, this, &SelectDataFiles::loadNewFiles);
    connect(m_dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) {
        emit filesSelected(files, m_ui->AddFiles->isChecked());
    });
    setFocusProxy(m_ui->Select);
    setAcceptDrops(true);
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

NamePattern SelectDataFiles::names() const {
    return {m_ui->EngPattern->text(), m_ui->SelectUnit->currentIndex() == 1};
}

void SelectDataFiles::changeNames() {
    if (m_measurement != nullptr) {
        m_measurement->setNames(m_stack, names());
    }
}

void SelectDataFiles::changeIndex(int index) {
    if (m_measurement != nullptr && !m_isShowing) {
        m_measurement->setFrame(m_stack, index);
    }
    emit currentIndexChanged(index);
}

void SelectDataFiles::follow(Measurement& measurement, StackId stack) {
    m_measurement = &measurement;
    m_stack = stack;
    connect(m_measurement, &Measurement::changed, this, &SelectDataFiles::showChanges);
    m_ui->Selected->clear();
    showFiles();
    showNames();
}

void SelectDataFiles::showChanges(Measurement::Changes what) {
    if (what & (Measurement::Changes(Measurement::Frames) | Measurement::Display)) {
        showFiles();
    } else if (what & Measurement::AtWork) {
        updateButtons();
    }
    if (what & Measurement::Setting) {
        showNames();
    }
}

/// Frames only ever come at the end, or go all at once.
void SelectDataFiles::showFiles() {
    const QScopedValueRollback<bool> showing(m_isShowing, true);
    const Stack& stack = m_measurement->stack(m_stack);
    if (count() > stack.size()) {
        m_ui->Selected->clear();
    }
    while (count() < stack.size()) {
        const TiffData* frame = stack.frames().at(count());
        m_ui->Selected->addItem(frame->fileName, frame->energy);
    }
    m_ui->Selected->setCurrentIndex(m_measurement->frameOf(m_stack));
    updateButtons();
}

void SelectDataFiles::showNames() {
    const NamePattern& present = m_measurement->settings().names[static_cast<int>(m_stack)];
    const QSignalBlocker pattern(m_ui->EngPattern);
    const QSignalBlocker unit(m_ui->SelectUnit);
    if (m_ui->EngPattern->text() != present.pattern) {
        m_ui->EngPattern->setText(present.pattern);
    }
    m_ui->SelectUnit->setCurrentIndex(present.isKeV ? 1 : 0);
}

void SelectDataFiles::updateButtons() {
    m_ui->Count->setText(QString::number(count()));
    const bool loading = m_measurement != nullptr && m_measurement->stack(m_stack).isLoading();
    setUsable(m_ui->LoadNewFiles, loading       ? tr("Wait until the stack is loaded.")
                                  : count() > 0 ? QString()
                                                : tr("Select the first files first."));
}

double SelectDataFiles::newFile(const QString& fname) {
    const double energy = frameEnergy(fname, names(), count());
    m_ui->Selected->addItem(fname, energy);
    updateButtons();
    return energy;
}

void SelectDataFiles::clear() {
    emit clearRequested();
    if (m_measurement == nullptr) {
        clearFiles();
    }
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
    if (m_measurement != nullptr && !m_measurement->stack(m_stack).isLoading()) {
        emit said(m_measurement->loadNew(m_stack));
    }
}

void SelectDataFiles::dragEnterEvent(QDragEnterEvent* event) {
    if (m_measurement != nullptr && !droppedFiles(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void SelectDataFiles::dropEvent(QDropEvent* event) {
    const QStringList dropped = droppedFiles(event->mimeData());
    if (m_measurement == nullptr || dropped.isEmpty()) {
        return;
    }
    event->acceptProposedAction();
    FrameGroup frames;
    for (const FrameGroup& group :
         contentsOf(*m_measurement, listingOf(*m_measurement, dropped)).groups) {
        frames.files += group.files;
    }
    if (frames.files.isEmpty()) {
        emit said(Outcome::failure(
            tr("%1: there is no frame among what was dropped").arg(m_ui->Label->text())));
        return;
    }
    orderByEnergy(&frames, m_measurement->settings().names[static_cast<int>(m_stack)]);
    FolderMemory::shared().note(FolderMemory::Reading,
                                QFileInfo(frames.files.first()).absolutePath());
    emit filesSelected(frames.files, m_ui->AddFiles->isChecked());
}
