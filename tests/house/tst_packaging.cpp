#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <algorithm>

#include "Files.h"
#include "TestMain.h"
#include "batch/ArgumentCheck.h"
#include "batch/ArgumentWords.h"

// What packages bring beside the programs is true of the programs.
namespace {

const QString Root = QStringLiteral(TARNWICK_SOURCE_DIR "/");

QString firstMatch(const QString& fileName, const QString& pattern) {
    return QRegularExpression(pattern, QRegularExpression::MultilineOption)
        .match(QString::fromUtf8(contentOf(fileName)))
        .captured(1);
}

QStringList commands() {
    QStringList names;
    for (const CommandRow& row : commandTable()) {
        names << row.name;
    }
    names.sort();
    return names;
}

}  // namespace

class TestPackaging : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

  private slots:
    void initTestCase() {
        initCommandTables();
        QProcess syntax;
        syntax.start(TARNWICK_SYNTAX, {m_dir.path()});
        QVERIFY(syntax.waitForFinished(60000));
        QCOMPARE(syntax.exitCode(), 0);
    }

    void versionsAgree_data() {
        columns<QString, QString>("file", "pattern");
        QTest::newRow("changes") << "CHANGELOG.md"
                                 << "^## ([0-9.]+) ";
        QTest::newRow("Debian") << "packaging/changelog.Debian"
                                << "^tarnwick \\(([0-9.]+)-1\\)";
        QTest::newRow("AppStream") << "packaging/org.tarnwick.Tarnwick.metainfo.xml"
                                   << "<release version=\"([0-9.]+)\"";
        QTest::newRow("guide") << "docs/guide/saving.md"
                               << "# program = Tarnwick ([0-9.]+)$";
    }

    void versionsAgree() {
        QFETCH(QString, file);
        QFETCH(QString, pattern);
        QCOMPARE(firstMatch(Root + file, pattern), QString(TARNWICK_VERSION));
    }

    void editorsKnowEveryCommand() {
        QXmlStreamReader xml(contentOf(m_dir.filePath("tarnwick-batch.xml")));
        QStringList contexts;
        QStringList used;
        QStringList kate;
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement) {
                const QString context = xml.attributes().value("context").toString();
                if (xml.name() == "context") {
                    contexts << xml.attributes().value("name").toString();
                } else if (xml.name() == "item") {
                    kate << xml.readElementText();
                } else if (!context.isEmpty()) {
                    used << QString(context).remove(QRegularExpression("^#(pop!?|stay)"));
                }
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(contexts.removeDuplicates(), 0);
        used.removeDuplicates();
        for (const QString& context : qAsConst(used)) {
            QVERIFY2(context.isEmpty() || contexts.contains(context), qPrintable(context));
        }
        kate.sort();
        QCOMPARE(kate, commands());

        QStringList vim;
        auto lines = QRegularExpression(
                         "^syn match tarnwickFunction_\\S+ /\\^\\\\s\\*\\\\zs\\\\%\\((.*)\\\\\\)",
                         QRegularExpression::MultilineOption)
                         .globalMatch(QString::fromUtf8(contentOf(m_dir.filePath("tarnwick.vim"))));
        while (lines.hasNext()) {
            vim += lines.next().captured(1).split("\\|");
        }
        vim.sort();
        QCOMPARE(vim, commands());
    }

    /// The words that editors show are those that commands take, and no other is taken.
    void wordsAreTaken() {
        int checked = 0;
        for (const CommandRow& row : commandTable()) {
            for (const ArgKind kind : row.args) {
                const CommandRow one{0, "one", {kind}, 1, false, Work::None, nullptr};
                const auto taken = [&one](const QString& word) {
                    const Outcome outcome = judgeArguments(one, {word});
                    return outcome.failures.isEmpty() && outcome.warnings.isEmpty();
                };
                for (const QString& word : argumentWords(kind)) {
                    QVERIFY2(taken(word.toUpper()), qPrintable(word));
                    ++checked;
                }
                const bool any = argKindName(kind) == "word" && mayBeNumber(kind);  // VIC or not
                if (!argumentWords(kind).isEmpty() && !any) {
                    QVERIFY2(!taken("qqq"), row.name);
                    QCOMPARE(taken("7112"), mayBeNumber(kind));
                }
            }
        }
        QVERIFY(checked > 50);
    }

    void completion_data() {
        columns<QStringList, QStringList>("words", "candidates");
        QTest::newRow("option") << QStringList{"--ch"} << QStringList{"--check"};
        QTest::newRow("batches and folders")
            << QStringList{""} << QStringList{"a.bat", "folder", "my b.bat"};
        QTest::newRow("folders") << QStringList{"-C", ""} << QStringList{"folder"};
        QTest::newRow("number") << QStringList{"--threads", ""} << QStringList{};
        QTest::newRow("file") << QStringList{"--report", "r"} << QStringList{"r.tif"};
        QTest::newRow("saved result") << QStringList{"--origin", "r"} << QStringList{"r.tif"};
    }

    void completion() {
        QFETCH(QStringList, words);
        QFETCH(QStringList, candidates);
        QVERIFY(QDir(m_dir.path()).mkpath("c/folder"));
        for (const char* name : {"a.bat", "my b.bat", "r.tif"}) {
            put(m_dir.filePath(QString("c/") + name), "");
        }
        QProcess bash;
        bash.setWorkingDirectory(m_dir.filePath("c"));
        const QString script =
            "source \"$1\"; shift; COMP_WORDS=(\"$@\")\n"
            "_tarnwick \"$1\" \"${@: -1}\" \"${@: -2:1}\"\n"
            "[ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"";
        const QString file = Root + "packaging/completion/tarnwick";
        bash.start("bash", QStringList{"-c", script, "bash", file, TARNWICK_BATCH} + words);
        QVERIFY(bash.waitForFinished(60000));
        QStringList found =
            QString::fromUtf8(bash.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        found.sort();
        QCOMPARE(found, candidates);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestPackaging)
#include "tst_packaging.moc"
