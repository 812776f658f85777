#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"

// The documents hold together and with the program: what they link to, quote and tell to type.
namespace {

const QString Root = QStringLiteral(TARNWICK_SOURCE_DIR "/");

QString textOf(const QString& fileName) {
    return QString::fromUtf8(contentOf(fileName));
}

QStringList filesBelow(const QString& dir, const QStringList& patterns) {
    QStringList files;
    QDirIterator it(Root + dir, patterns, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files.append(it.next());
    }
    files.sort();
    return files;
}

QStringList documents() {
    return QStringList{Root + "README.md", Root + "CONTRIBUTING.md", Root + "SECURITY.md",
                       Root + "samples/README.md"} +
           filesBelow("docs", {"*.md"});
}

QStringList captures(const QString& text, const QString& pattern) {
    QStringList found;
    auto it = QRegularExpression(pattern, QRegularExpression::DotMatchesEverythingOption)
                  .globalMatch(text);
    while (it.hasNext()) {
        found.append(it.next().captured(1));
    }
    return found;
}

// The names by which a heading can be linked to.
QStringList anchorsOf(const QString& text) {
    QStringList anchors;
    for (const QString& line : text.split('\n')) {
        if (line.startsWith('#')) {
            QString anchor = line.section(' ', 1).toLower();
            anchor.remove(
                QRegularExpression("[^\\w\\- ]", QRegularExpression::UseUnicodePropertiesOption));
            anchors.append(anchor.replace(' ', '-'));
        }
    }
    return anchors;
}

}  // namespace

class TestDocs : public QObject {
    Q_OBJECT

  private slots:
    void linksLeadSomewhere() {
        QStringList broken;
        int checked = 0;
        for (const QString& document : documents()) {
            for (const QString& link : captures(textOf(document), "\\]\\(([^)\\s]+)\\)")) {
                if (link.contains("://")) {
                    continue;
                }
                ++checked;
                const QString path = link.section('#', 0, 0);
                const QString target =
                    path.isEmpty() ? document : QFileInfo(document).dir().absoluteFilePath(path);
                const QString anchor = link.section('#', 1);
                if (!QFile::exists(target) ||
                    (!anchor.isEmpty() && !anchorsOf(textOf(target)).contains(anchor))) {
                    broken.append(document + ": " + link);
                }
            }
        }
        QVERIFY(checked > 50);
        QVERIFY2(broken.isEmpty(), qPrintable(broken.join('\n')));
    }

    void quotedLogLinesAreThoseOfTheProgram() {
        QString program;
        for (const QString& source : filesBelow("src", {"*.cpp"})) {
            program +=
                textOf(source).remove(QRegularExpression("\"\\s*\""));  // texts in several lines
        }
        const QString chapter = textOf(Root + "docs/guide/troubleshooting.md");
        const QString tables =
            chapter.section("## Lines in the terminal", 1).section("\n## ", 0, 0);
        const QStringList lines = captures(tables, "(?:\\n\\| |`, |` to )`([^`]+)`");
        QVERIFY(lines.size() > 20);
        for (const QString& line : lines) {
            // The longest part without names, numbers and times.
            QString fixed;
            for (const QString& part :
                 line.split(QRegularExpression("\\b(NAME|TEXT|TIME|WHY|N|I1)\\b"))) {
                fixed = part.size() > fixed.size() ? part : fixed;
            }
            QVERIFY2(program.contains(fixed.trimmed()), qPrintable(line));
        }
    }

    void japaneseNamesAreThoseOfTheInterface() {
        const QString texts = textOf(Root + "src/ui/translations/Tarnwick_ja_JP.ts");
        int checked = 0;
        for (const QString& document : filesBelow("docs/guide/ja", {"*.md"})) {
            for (const QString& name : captures(textOf(document), QStringLiteral("「([^」]+)」"))) {
                if (name.contains('`')) {
                    continue;  // a name from a file, not from the interface
                }
                const QString numbered = QString(name).replace(QRegularExpression("\\d"), "%1");
                const bool known =
                    texts.contains('>' + name) || texts.contains('>' + numbered) || name == "mu-t";
                QVERIFY2(known, qPrintable(document + ": " + name));
                ++checked;
            }
        }
        QVERIFY(checked > 20);
    }

    /// Keys that menus, shortcuts and widgets of the program know stand on the page about keys.
    void everyKeyIsNamed() {
        const QHash<QString, QString> names{{"QKeySequence::Open", "Ctrl+O"},
                                            {"QKeySequence::Save", "Ctrl+S"},
                                            {"QKeySequence::Copy", "Ctrl+C"},
                                            {"QKeySequence::Find", "Ctrl+F"},
                                            {"QKeySequence::HelpContents", "F1"},
                                            {"Escape", "Esc"},
                                            {"Return", "Enter"},
                                            {"PageUp", "Up"},
                                            {"PageDown", "Down"},
                                            {"Up", "arrow"},
                                            {"Down", "arrow"}};
        const QRegularExpression key(
            "QKeySequence::[A-Z]\\w+|((?:Qt::(?:CTRL|SHIFT|ALT) ?[+|] ?)*)Qt::Key_(\\w+)");
        QSet<QString> keys;
        for (const QString& source : filesBelow("src/ui", {"*.cpp"})) {
            auto it = key.globalMatch(
                textOf(source).remove(QRegularExpression("QKeySequence::NativeText")));
            while (it.hasNext()) {
                const auto found = it.next();
                QString with = found.captured(1);
                with.replace("Qt::CTRL", "Ctrl").replace("Qt::SHIFT", "Shift");
                with.replace("Qt::ALT", "Alt").remove(' ').replace('|', '+');
                const QString name = found.captured(found.lastCapturedIndex());
                keys << with + (with.isEmpty() || name.size() > 5 ? names.value(name, name) : name);
            }
        }
        QVERIFY(keys.size() > 30);
        for (const char* page : {"docs/guide/keyboard.md", "docs/guide/ja/keyboard.md"}) {
            QString text = textOf(Root + page);
            const QStringList named = text.replace(QString::fromUtf8("矢印"), " arrow ")
                                          .split(QRegularExpression("[^A-Za-z0-9+]+"));
            for (const QString& known : qAsConst(keys)) {
                QVERIFY2(named.contains(known), qPrintable(known + " is not on " + page));
            }
        }
    }

    void batchesOfTheGuideDoTheirWork() {
        QTemporaryDir dir;
        QProcess samples;
        samples.start(TARNWICK_SAMPLES, {dir.path(), "--size", "128x120", "--energies", "40"});
        QVERIFY(samples.waitForFinished(60000) && samples.exitCode() == 0);
        int checked = 0;
        for (const QString& document : filesBelow("docs/guide", {"*.md"})) {
            for (const QString& batch : captures(textOf(document), "\\n```batch\\n(.*?)\\n```")) {
                put(dir.filePath("guide.bat"), batch.toUtf8());
                QProcess runner;
                runner.setWorkingDirectory(dir.path());
                runner.start(TARNWICK_BATCH, {"guide.bat"});
                QVERIFY(runner.waitForFinished(120000));
                QVERIFY2(runner.exitCode() == 0, runner.readAllStandardOutput());
                ++checked;
            }
        }
        QVERIFY(checked > 2);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestDocs)
#include "tst_docs.moc"
