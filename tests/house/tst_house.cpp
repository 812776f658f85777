#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>

#include "TestMain.h"

// Who may include whom, as docs/architecture.md tells it. What is not listed is forbidden; a room
// always sees itself.
namespace {

using Rooms = QStringList;

// Headers at the bottom of the house that every room may use.
const QStringList& groundFloor() {
    static const QStringList headers = {QStringLiteral("app/Globals.h"),
                                        QStringLiteral("app/DebugLog.h"),
                                        QStringLiteral("app/Availability.h")};
    return headers;
}

// Rooms, or single headers of a room, that the files of a room may include.
const QHash<QString, Rooms>& table() {
    static const QStringList values = {"analysis/Analyzed2DRes.h", "analysis/AnalysisGrid.h"};
    static const Rooms data = {"imagedata", "spectra"};
    static const Rooms panels = data + Rooms{"display"};
    static const QHash<QString, Rooms> rows = {
        {"imagedata", {"spectra"}},
        {"spectra", {}},
        {"display", data},
        {"calibration", panels + values},
        {"analysis", panels},
        {"output", panels + values},
        {"batch", panels},
        {"translations", {}},
        {"app", panels + Rooms{"calibration", "analysis", "output", "batch"}},
        {"runner", panels + Rooms{"calibration", "analysis", "output", "batch", "app"}},
    };
    return rows;
}

QString roomOf(const QString& path) {
    return path.section('/', 0, 0);
}

// file and include are paths below src, for example "display/DispA.cpp" and "spectra/Spectrum.h".
bool mayInclude(const QString& file, const QString& include) {
    const QString room = roomOf(file);
    if (!table().contains(room))
        return false;
    // The ground floor itself stands on nothing.
    if (groundFloor().contains(file))
        return groundFloor().contains(include);
    return room == roomOf(include) || groundFloor().contains(include) ||
           table()[room].contains(roomOf(include)) || table()[room].contains(include);
}

struct Includes {
    QStringList quoted;
    QStringList angled;
};

Includes includesOf(const QString& fileName) {
    static const QRegularExpression line("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]",
                                         QRegularExpression::MultilineOption);
    Includes found;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return found;
    QRegularExpressionMatchIterator matches = line.globalMatch(QString::fromUtf8(file.readAll()));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        (match.captured(1) == "<" ? found.angled : found.quoted).append(match.captured(2));
    }
    return found;
}

QString src() {
    return QStringLiteral(TARNWICK_SOURCE_DIR "/src/");
}

QStringList sourcesBelow(const QString& dir) {
    QStringList files;
    QDirIterator it(dir, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    return files;
}

bool isWidgetHeader(const QString& include) {
    if (include.startsWith("QtWidgets") || include.startsWith("ui_"))
        return true;
    const QStringList dirs = QStringLiteral(TARNWICK_WIDGET_HEADERS).split(':');
    for (const QString& dir : dirs) {
        if (dir.endsWith("QtWidgets") && QFile::exists(dir + '/' + include))
            return true;
    }
    return false;
}

// The first include chain from file to a widget header, empty when there is none.
QString chainToWidget(const QString& file, QSet<QString>* seen) {
    if (seen->contains(file))
        return QString();
    seen->insert(file);
    const Includes includes = includesOf(src() + file);
    for (const QString& include : includes.angled + includes.quoted) {
        if (isWidgetHeader(include))
            return file + " > " + include;
    }
    for (const QString& include : includes.quoted) {
        const QString chain = chainToWidget(include, seen);
        if (!chain.isEmpty())
            return file + " > " + chain;
    }
    return QString();
}

}  // namespace

class HouseTest : public QObject {
    Q_OBJECT

  private slots:
    void theRuleTellsRoomsApart();
    void widgetHeadersAreRecognised();
    void everyFolderIsARoom();
    void filesIncludeDownwardsOnly();
    void theCoreKnowsNoWidget();
    void onlyTheTiffFilesKnowLibtiff();
};

void HouseTest::theRuleTellsRoomsApart() {
    QVERIFY(mayInclude("analysis/Analyzer.cpp", "display/XafsView.h"));
    QVERIFY(!mayInclude("display/DispA.cpp", "analysis/Analyzer.h"));
    QVERIFY(!mayInclude("calibration/CalibCtrl.cpp", "analysis/Analyzer.h"));
    QVERIFY(mayInclude("calibration/EnergyShift.cpp", "analysis/AnalysisGrid.h"));
    QVERIFY(mayInclude("spectra/Spectrum.cpp", "app/DebugLog.h"));
    QVERIFY(!mayInclude("app/Globals.h", "batch/CmdLine.h"));
    QVERIFY(!mayInclude("attic/Box.cpp", "attic/Box.h"));
}

// Guards the other tests against a Qt that keeps its headers elsewhere.
void HouseTest::widgetHeadersAreRecognised() {
    QVERIFY(isWidgetHeader("QLineEdit"));
    QVERIFY(isWidgetHeader("qwidget.h"));
    QVERIFY(isWidgetHeader("QtWidgets/QLabel"));
    QVERIFY(!isWidgetHeader("QString"));
    QVERIFY(!isWidgetHeader("QImage"));
}

void HouseTest::everyFolderIsARoom() {
    const QStringList folders = QDir(src()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QVERIFY(folders.contains("spectra"));
    for (const QString& folder : folders)
        QVERIFY2(table().contains(folder), qPrintable("no row for src/" + folder));
}

void HouseTest::filesIncludeDownwardsOnly() {
    QStringList wrong;
    int checked = 0;
    for (const QString& path : sourcesBelow(src())) {
        const QString file = path.mid(src().size());
        for (const QString& include : includesOf(path).quoted) {
            if (!QFile::exists(src() + include))
                continue;  // generated
            ++checked;
            if (!mayInclude(file, include))
                wrong.append(file + " includes " + include);
        }
    }
    QVERIFY(checked > 0);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void HouseTest::theCoreKnowsNoWidget() {
    QFile list(TARNWICK_CORE_SOURCES);
    QVERIFY(list.open(QIODevice::ReadOnly));
    const QStringList sources = QString::fromUtf8(list.readAll()).split('\n', Qt::SkipEmptyParts);
    QStringList wrong;
    int checked = 0;
    for (const QString& source : sources) {
        if (!source.startsWith(src()))
            continue;  // generated
        QSet<QString> seen;
        ++checked;
        const QString chain = chainToWidget(source.mid(src().size()), &seen);
        if (!chain.isEmpty())
            wrong.append(chain);
    }
    QVERIFY(checked > 0);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

void HouseTest::onlyTheTiffFilesKnowLibtiff() {
    QStringList wrong;
    for (const QString& path : sourcesBelow(src())) {
        const QString file = path.mid(src().size());
        if (includesOf(path).angled.contains("tiffio.h") && file != "imagedata/TiffFile.cpp")
            wrong.append(file);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
}

TARNWICK_TEST_MAIN(QCoreApplication, HouseTest)
#include "tst_house.moc"
