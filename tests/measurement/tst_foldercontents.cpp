#include <QFileInfo>

#include "TestMain.h"
#include "measurement/FolderContents.h"

namespace {

/// "i1/fe-*.tif:3" are three files with energies, 7000 eV and on, in the folder i1.
FolderListing listing(const QString& path, const QString& files) {
    FolderListing found{path, {{QString(), {}}}, {}};
    for (const QString& item : files.split(' ', Qt::SkipEmptyParts)) {
        const QString file = item.section(':', 0, 0);
        const QString folder = file.contains('/') ? file.section('/', 0, 0) : QString();
        if (found.parts.last().name != folder) {
            found.parts << FolderListing::Part{folder, {}};
        }
        const int count = item.contains(':') ? item.section(':', 1).toInt() : 1;
        for (int i = 0; i < count; ++i) {
            found.parts.last().files
                << path + '/' + QString(file).replace('*', QString::number(7000 + i) + "eV");
        }
    }
    return found;
}

QString namesOf(const QStringList& files) {
    QStringList names;
    for (const QString& file : files) {
        names << QFileInfo(file).fileName();
    }
    return names.join(' ');
}

}  // namespace

/// What a folder holds of a measurement is told by names, and what is not taken is said.
class TestFolderContents : public QObject {
    Q_OBJECT

  private slots:
    void kinds_data() {
        columns<QString, QString, QString, QString, QString>("path", "files", "taken", "spectra",
                                                             "text");
        const auto row = [](const char* name, const QString& files, const QString& taken,
                            const QString& spectra, const QString& text,
                            const QString& path = "/d/run") {
            QTest::newRow(name) << path << files << taken << spectra << text;
        };
        row("folders", "i1/fe-*.tif:3 i0/fe-*.tif:2 dark/*.tif:1 references/a.dat references/b.txt",
            "i1:3 i0:2 dark:1", "a.dat b.txt|", "");
        row("other words", "Trans/*.tiff:3 Flats/*.TIF:2 Dark_1s/1.tif refs/a.dat",
            "Trans:3 Flats:2 Dark_1s:1", "a.dat|", "");
        row("names", "x-i1-*.tif:3 x-i0-*.tif:2 dark001.tif a.dat foil.dat",
            "x-i1-*eV.tif:3 x-i0-*eV.tif:2 dark001.tif:1", "a.dat|foil.dat", "");
        row("humps", "feI1_*.tif:3 feI0_*.tif:2", "feI1_*eV.tif:3 feI0_*eV.tif:2 -", "|", "");
        row("a stronger word", "sample3_i0_*.tif:2 sample3_*.tif:3 dark_i1.tif:1",
            "sample3_*eV.tif:3 sample3_i0_*eV.tif:2 dark_i1.tif:1", "|", "");
        row("no word", "fe-*.tif:3 fe-mean.tif i0/*.tif:2", "fe-*eV.tif:3 i0:2 -", "|",
            "frames not taken: fe-mean.tif (1 file)");
        row("named after its folder", "*.tif:2", "- *eV.tif:2 -", "|", "no I1 frames in /d/i0",
            "/d/i0");
        row("spectra beside a folder of them", "i1/*.tif:3 std/a.dat b.dat standard/c.dat",
            "i1:3 - -", "a.dat|c.dat", "");
        row("two that could be it", "i1/*.tif:3 i1_old/*.tif:9", "i1:3 - -", "|",
            "could be meant in place of i1, not taken: i1_old (9 files)");
        row("of two kinds", "i1/*.tif:3 i1/i0-*.tif:2", "i1/*eV.tif:3 - -", "|",
            "named as frames of two kinds, not taken: i1/i0-*eV.tif (2 files)");
        row("no word tells which", "a-*.tif:3 b-*.tif:3", "- - -", "|",
            "no frames are named as I1, I0 or dark in /d/run|frames not taken: a-*eV.tif (3 "
            "files), b-*eV.tif (3 files)");
        row("others", "i1/*.tif:3 notes.md i1/log.md", "i1:3 - -", "|",
            "neither frames nor spectra: notes.md and 1 more");
        row("no frames", "a.dat references/b.dat", "- - -", "b.dat|", "no such folder: /d/run");
    }

    void kinds() {
        QFETCH(QString, path);
        QFETCH(QString, files);
        const NamePattern names[2];
        const FolderContents found = contentsOf(listing(path, files), names);
        QStringList taken;
        for (const FrameKind kind : {FrameKind::I1, FrameKind::I0, FrameKind::Dark}) {
            const FrameGroup* group = found.group(kind);
            taken << (group == nullptr
                          ? QString("-")
                          : QString("%1:%2").arg(group->name).arg(group->files.size()));
        }
        QTEST(taken.join(' '), "taken");
        QTEST(namesOf(found.references) + '|' + namesOf(found.standards), "spectra");
        QTEST((found.outcome.texts() + found.outcome.notes).join('|'), "text");
        QCOMPARE(found.outcome.failed(), taken.count("-") == 3);
    }

    /// Not in that of the names, where counters stand before the energies.
    void framesAreInOrderOfEnergy() {
        FrameGroup group;
        group.files = QStringList{"1-7200eV.tif", "2-7100_5eV.tif", "3-7150eV.tif"};
        orderByEnergy(&group, NamePattern());
        QCOMPARE(group.files.join(' '), QString("2-7100_5eV.tif 3-7150eV.tif 1-7200eV.tif"));
        QCOMPARE(energiesText(group.lowest, group.highest), QString("7100.5 to 7200.0 eV"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFolderContents)
#include "tst_foldercontents.moc"
