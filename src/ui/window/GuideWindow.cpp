#include "window/GuideWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyle>
#include <functional>

#include "window/GuideBrowser.h"

namespace {

constexpr int LevelsOfABuild = 4;  // build/PRESET/src/programs
constexpr int MostHits = 500;
constexpr int LinesOfHits = 9;

}  // namespace

QString GuideWindow::firstPage() {
    //: contents of the guide in the language of the interface
    const QString page = tr("guide/README.md");
    QDir dir(QCoreApplication::applicationDirPath());
    const QString installed = dir.filePath(QStringLiteral(TARNWICK_DOCUMENTS "/") + page);
    if (QFile::exists(installed)) {
        return QDir::cleanPath(installed);
    }
    for (int i = 0; i < LevelsOfABuild && dir.cdUp(); ++i) {
        const QString source = dir.filePath(QStringLiteral("docs/") + page);
        if (QFile::exists(source)) {
            return source;
        }
    }
    return QString();
}

GuideWindow::GuideWindow(QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_pages(new GuideBrowser(this)),
      m_words(new QLineEdit(this)),
      m_count(new QLabel(this)),
      m_hits(new QListWidget(this)) {
    setObjectName(QStringLiteral("Guide"));
    setWindowTitle(tr("User Guide"));
    m_pages->setObjectName(QStringLiteral("GuidePage"));
    m_pages->setAccessibleName(tr("Page of the guide"));
    m_hits->setObjectName(QStringLiteral("GuideHits"));
    m_hits->setAccessibleName(tr("Places that were found"));
    m_hits->setWordWrap(true);
    m_hits->setAlternatingRowColors(true);
    m_hits->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_hits->setFixedHeight(LinesOfHits * fontMetrics().lineSpacing());
    m_hits->hide();
    connect(m_hits, &QListWidget::currentRowChanged, this, &GuideWindow::showHit);

    auto* top = makeButtons();
    top->addLayout(makeSearch(), 1);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(m_hits);
    all->addWidget(m_pages, 1);
    addKey(Qt::CTRL + Qt::Key_W, [this] { close(); });
    const int line = fontMetrics().height();
    const QSize room = screen()->availableSize() - QSize(0, 3 * line);  // less the title bar
    resize(QSize(900, 760).boundedTo(room));
    m_pages->setFocus();
    showPage(QString());
}

GuideWindow::~GuideWindow() = default;

QPushButton* GuideWindow::addButton(QHBoxLayout* row, const QString& name, const QString& text,
                                    const QString& toolTip, const QList<QKeySequence>& keys) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setToolTip(
        QStringLiteral("%1 (%2)").arg(toolTip, keys.first().toString(QKeySequence::NativeText)));
    button->setAutoDefault(true);
    row->addWidget(button);
    for (const QKeySequence& key : keys) {
        addKey(key, [button] { button->click(); });
    }
    return button;
}

void GuideWindow::addKey(const QKeySequence& keys, const std::function<void()>& act) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
}

QHBoxLayout* GuideWindow::makeButtons() {
    auto* row = new QHBoxLayout;
    const auto* contents = addButton(row, QStringLiteral("GuideContents"), tr("Contents"),
                                     tr("Show the first page"), {Qt::ALT + Qt::Key_Home});
    connect(contents, &QPushButton::clicked, this, [this] { showPage(QString()); });
    auto* back = addButton(row, QStringLiteral("GuideBack"), tr("Back"),
                           tr("Go back to the page before"), {Qt::ALT + Qt::Key_Left});
    auto* forward = addButton(row, QStringLiteral("GuideForward"), tr("Forward"),
                              tr("Go forward again"), {Qt::ALT + Qt::Key_Right});
    back->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
    forward->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(back, &QPushButton::clicked, m_pages, &QTextBrowser::backward);
    connect(forward, &QPushButton::clicked, m_pages, &QTextBrowser::forward);
    connect(m_pages, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(m_pages, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    return row;
}

QHBoxLayout* GuideWindow::makeSearch() {
    auto* row = new QHBoxLayout;
    row->addSpacing(fontMetrics().height());
    m_words->setObjectName(QStringLiteral("GuideSearch"));
    m_words->setAccessibleName(tr("Search the guide"));
    m_words->setPlaceholderText(tr("Search the guide"));
    m_words->setToolTip(
        tr("Words to look for in all chapters (Ctrl+F); Enter or F3 goes to the "
           "next place, Shift+F3 to the one before"));
    m_words->setClearButtonEnabled(true);
    m_count->setObjectName(QStringLiteral("GuideCount"));
    row->addWidget(m_words, 1);
    row->addWidget(m_count);
    connect(m_words, &QLineEdit::textChanged, this, &GuideWindow::search);
    connect(m_words, &QLineEdit::returnPressed, this, [this] { step(1); });
    addKey(QKeySequence::Find, [this] {
        m_words->setFocus();
        m_words->selectAll();
    });
    addKey(Qt::Key_F3, [this] { step(1); });
    addKey(Qt::SHIFT + Qt::Key_F3, [this] { step(-1); });
    addKey(Qt::Key_Escape, [this] {
        m_words->clear();
        m_pages->setFocus();
    });
    return row;
}

void GuideWindow::showPage(const QString& page) {
    const QUrl first = QUrl::fromLocalFile(firstPage());
    m_pages->setSource(page.isEmpty() ? first : first.resolved(QUrl(page)));
}

void GuideWindow::search(const QString& words) {
    if (m_text == nullptr) {
        m_text = std::make_unique<GuideText>(firstPage());
    }
    m_found = m_text->find(words, MostHits);
    const QSignalBlocker refilled(m_hits);
    m_hits->clear();
    for (const GuideHit& hit : qAsConst(m_found)) {
        m_hits->addItem(hit.chapter + QLatin1Char('\n') + hit.sentence);
    }
    m_hits->setVisible(!m_found.isEmpty());
    m_pages->mark(words);
    showHit(-1);
}

void GuideWindow::step(int by) {
    const int n = m_found.size();
    if (n > 0) {
        const int row = m_hits->currentRow();
        m_hits->setCurrentRow(row < 0 ? (by > 0 ? 0 : n - 1) : (row + by + n) % n);
    }
}

void GuideWindow::showHit(int row) {
    const int n = m_found.size();
    const QString many = n < MostHits ? QString::number(n) : tr("more than %1").arg(n - 1);
    m_count->setText(m_words->text().trimmed().isEmpty() ? QString()
                     : n == 0                            ? tr("not found")
                     : row < 0                           ? tr("%1 places").arg(many)
                                                         : tr("%1 of %2").arg(row + 1).arg(many));
    if (row >= 0 && row < n) {
        const GuideHit& hit = m_found.at(row);
        m_pages->goTo(QUrl::fromLocalFile(hit.page), hit.position);
    }
}
