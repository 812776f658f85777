// The menu of the spectrum plot: saving the plot, pinned spectra.

#include <QAction>
#include <QFileDialog>
#include <QMenu>
#include <QPainter>

#include "base/DebugLog.h"
#include "base/Globals.h"
#include "display/DispA.h"
#include "display/FolderMemory.h"
#include "display/MessageLine.h"
#include "display/XafsView.h"
#include "drawing/PlotPicture.h"
#include "ui_XafsView.h"

namespace {

QIcon swatch(const QColor& color) {
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    QPainter(&picture).fillRect(QRect(1, 6, 14, 4), color);
    return QIcon(picture);
}

}  // namespace

void XafsView::makeMenu() {
    m_menu = new QMenu(this);
    m_menu->setToolTipsVisible(true);
    QAction* save = m_menu->addAction(tr("Save Plot..."), this, &XafsView::showSaveDialog);
    save->setObjectName(QStringLiteral("SavePlot"));
    save->setToolTip(tr("As picture (PNG) or as vector drawing (PDF)"));
    save->setShortcut(QKeySequence::Save);
    m_menu->addSeparator();
    m_pinAction = m_menu->addAction(tr("Pin Spectrum"), this, &XafsView::pinSpectrum);
    m_pinAction->setObjectName(QStringLiteral("PinSpectrum"));
    m_pinAction->setShortcut(QKeySequence(Qt::CTRL + Qt::Key_T));
    m_pinAction->setAutoRepeat(false);
    m_removeMenu = m_menu->addMenu(tr("Remove Pinned"));
    m_removeMenu->setObjectName(QStringLiteral("RemovePinned"));
    connect(m_removeMenu, &QMenu::aboutToShow, this, &XafsView::listPinned);
    m_removeAllAction =
        m_menu->addAction(tr("Remove All Pinned"), this, &XafsView::removeAllPinned);
    m_removeAllAction->setObjectName(QStringLiteral("RemoveAllPinned"));
    m_removeAllAction->setShortcut(QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_T));
    addActions({save, m_pinAction, m_removeAllAction});
    m_ui->PlotMenu->setMenu(m_menu);
    m_ui->Canvas->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_ui->Canvas, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { m_menu->popup(m_ui->Canvas->mapToGlobal(at)); });
    updateMenu();
}

void XafsView::updateMenu() {
    const bool anySample = m_plot.hasSample();
    const bool full = m_plot.pinned.size() >= MostPinned;
    m_pinAction->setEnabled(anySample && !full);
    m_pinAction->setToolTip(!anySample ? tr("Point at a position of the image first.")
                            : full
                                ? tr("Remove a pinned spectrum first.")
                                : tr("Keep the spectrum in the plot, to compare others with it"));
    m_removeMenu->setEnabled(!m_plot.pinned.isEmpty());
    m_removeAllAction->setEnabled(!m_plot.pinned.isEmpty());
}

void XafsView::listPinned() {
    m_removeMenu->clear();
    for (int i = 0; i < m_plot.pinned.size(); ++i) {
        m_removeMenu->addAction(swatch(m_plot.readable(m_plot.pinned[i].color)),
                                m_plot.pinned[i].name, this, [this, i] { removePinned(i); });
    }
}

void XafsView::showSaveDialog() {
    if (m_plotDialog == nullptr) {
        const QString drawing = tr("Vector Drawing (*.pdf)");
        m_plotDialog = new QFileDialog(this, tr("Save Plot"));
        m_plotDialog->setObjectName(QStringLiteral("PlotDialog"));
        m_plotDialog->setAcceptMode(QFileDialog::AcceptSave);
        m_plotDialog->setFileMode(QFileDialog::AnyFile);
        m_plotDialog->setNameFilters({tr("Image File (*.png)"), drawing});
        m_plotDialog->setDefaultSuffix(QStringLiteral("png"));
        m_plotDialog->setModal(false);
        connect(m_plotDialog, &QFileDialog::filterSelected, this, [=](const QString& filter) {
            m_plotDialog->setDefaultSuffix(filter == drawing ? QStringLiteral("pdf")
                                                             : QStringLiteral("png"));
        });
        connect(m_plotDialog, &QFileDialog::fileSelected, this, &XafsView::savePlot);
    }
    FolderMemory::shared().show(m_plotDialog);
}

bool XafsView::savePlot(const QString& fname) {
    const Outcome outcome = write(fname, [&] { return writePlot(fname, m_plot); });
    if (outcome.failed()) {
        debugFile("cannot be written:", fname);
    }
    m_message->say(outcome);
    m_message->setVisible(!m_message->text().isEmpty());
    emit said(outcome, fname);
    return !outcome.failed();
}

QColor XafsView::colorOfPinned() const {
    // The first colour that no other curve has.
    QList<QColor> taken{getColor(0), getColor(2)};
    for (const QVector<Reference>& others : {m_plot.references, m_plot.pinned}) {
        for (const Reference& other : others) {
            taken.append(other.color);
        }
    }
    for (int i = 0; i < 3 * Colors.size(); ++i) {
        const QColor color = getColor(i).darker(100 + 50 * (i / Colors.size()));
        if (!taken.contains(color)) {
            return color;
        }
    }
    return m_plot.colors.ink;
}

void XafsView::pinSpectrum() {
    if (m_plot.hasSample()) {
        pin(m_plot.sample->spectrum, m_plot.sample->name, m_plot.sample->savedName);
    }
}

void XafsView::pin(const XafsSpectrum& spectrum, const QString& name, const QString& savedName) {
    if (spectrum.isEmpty() || m_plot.pinned.size() >= MostPinned) {
        return;
    }
    m_plot.pinned.append({spectrum, name, true, QColor(), savedName});
    m_plot.pinned.last().color = colorOfPinned();
    update();
}

void XafsView::removePinned(int index) {
    if (index >= 0 && index < m_plot.pinned.size()) {
        m_plot.pinned.remove(index);
        update();
    }
}

void XafsView::removeAllPinned() {
    m_plot.pinned.clear();
    update();
}
