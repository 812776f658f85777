#include "panels/ReferenceFiles.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include "display/FolderMemory.h"
#include "panels/WhyNot.h"

namespace {

/// Files of this computer; none when anything else, such as a folder, is among what is dropped.
QStringList filesOf(const QMimeData* data) {
    QStringList files;
    const QList<QUrl> urls = data->urls();
    for (const QUrl& url : urls) {
        const QString file = url.toLocalFile();
        if (!QFileInfo(file).isFile()) {
            return {};
        }
        files << file;
    }
    return files;
}

}  // namespace

ReferenceFiles::ReferenceFiles(Measurement& measurement, QWidget* panel)
    : QObject(panel), m_measurement(measurement), m_panel(panel) {
    panel->setAcceptDrops(true);
    panel->installEventFilter(this);
}

void ReferenceFiles::ask(int reference) {
    m_asked = reference;
    if (m_dialog == nullptr) {
        m_dialog = new QFileDialog(m_panel, tr("Reference Spectra"));
        m_dialog->setObjectName(QStringLiteral("ReferenceDialog"));
        m_dialog->setFileMode(QFileDialog::ExistingFiles);
        m_dialog->setNameFilters(
            {tr("Spectrum Files (*.dat *.txt *.xdi)"), tr("Any Files (* *.*)")});
        connect(m_dialog, &QFileDialog::filesSelected, this,
                [this](const QStringList& files) { take(files, m_asked); });
    }
    FolderMemory::shared().show(m_dialog);
}

int ReferenceFiles::firstEmpty() const {
    int number = 0;
    for (const auto& reference : m_measurement.references()) {
        if (!reference->hasSpectrum()) {
            return number;
        }
        ++number;
    }
    return -1;
}

Outcome ReferenceFiles::read(const QString& file, int reference) {
    Outcome outcome;
    int target = reference >= 0 ? reference : firstEmpty();
    if (target < 0) {
        outcome = m_measurement.addReference();
        target = m_measurement.referenceCount() - 1;
    }
    if (!outcome.failed()) {
        m_measurement.change(target, [&](Reference& r) {
            outcome = r.read(file);
            r.setUse(true);
        });
    }
    return outcome;
}

void ReferenceFiles::take(const QStringList& files, int reference) {
    const QString running = whileAnalyzing(m_measurement);
    if (files.isEmpty() || !running.isEmpty()) {
        emit said(running.isEmpty() ? Outcome() : Outcome::failure(running), QString());
        return;
    }
    Outcome all;
    QStringList taken;
    int target = reference;
    for (const QString& file : files) {
        const Outcome outcome = read(file, target);
        if (!outcome.failed()) {
            taken << QFileInfo(file).fileName();
            target = -1;
        }
        all += outcome;
    }
    if (!taken.isEmpty()) {
        all.notes << tr("In use: %1").arg(taken.join(QStringLiteral(", ")));
    }
    emit said(all, files.size() == 1 ? files.first() : QString());
}

bool ReferenceFiles::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop) {
        auto* drop = static_cast<QDropEvent*>(event);
        const QStringList files = filesOf(drop->mimeData());
        if (!files.isEmpty()) {
            drop->acceptProposedAction();
            if (event->type() == QEvent::Drop) {
                take(files);
            }
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
