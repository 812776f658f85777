#include <QRegularExpression>
#include <QTemporaryDir>

#include "TestMain.h"
#include "TinyStacks.h"
#include "frames/DarkData.h"

namespace {

QStringList darkFiles(const QTemporaryDir& dir, const QString& prefix, int width,
                      const std::vector<quint16>& counts) {
    std::vector<double> numbers;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        numbers.push_back(static_cast<double>(i + 1));
    }
    return writeTinyStack(dir.path(), prefix, width, 3, numbers,
                          [&](int i, int, int) { return counts[static_cast<std::size_t>(i)]; });
}

double pixel(DarkData& dark) {
    const DarkFrame* mean = dark.mean();
    return mean != nullptr ? mean->boxSum(0, 0, 0, 0) : -1.0;
}

}  // namespace

class TestDarkData : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        m_files = darkFiles(m_dir, "d", 4, {10, 30, 20, 40});
        m_wide = darkFiles(m_dir, "w", 5, {7});
        QCOMPARE(m_files.size() + m_wide.size(), 5);
    }

    void framesAreReplacedAndCleared() {
        DarkData dark;
        dark.setImageSize(4, 3);
        QCOMPARE(pixel(dark), -1.0);
        QSignalSpy changed(&dark, &DarkData::changed);
        dark.replace(m_files);
        QVERIFY(dark.isLoading());
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(pixel(dark), 25.0);
        // The mean in use lasts until the other frames are all there.
        dark.replace(m_files.mid(0, 1));
        QCOMPARE(pixel(dark), 25.0);
        dark.replace(m_files.mid(1, 1));  // while a frame is under way
        QTRY_COMPARE(changed.count(), 2);
        QCOMPARE(pixel(dark), 30.0);
        QCOMPARE(dark.loaded(), 1);
        dark.clear();
        QCOMPARE(dark.loaded(), 0);
        QCOMPARE(pixel(dark), -1.0);
    }

    void framesOfAnotherSizeAreRefused() {
        DarkData dark;
        dark.setImageSize(4, 3);
        const QRegularExpression line("Dark frame of another size than the images.*w-1");
        QTest::ignoreMessage(QtDebugMsg, line);  // fails when it does not come
        dark.replace(m_wide + m_files.mid(0, 2) + QStringList{m_dir.filePath("none.tif")});
        QTRY_VERIFY(!dark.isLoading());
        QCOMPARE(dark.loaded(), 2);
        QCOMPARE(dark.refused(), 2);
        QCOMPARE(pixel(dark), 20.0);
    }

    void imagesOfAnotherSizeLeaveTheFramesUnused() {
        DarkData dark;
        dark.replace(m_wide + m_files.mid(0, 2));  // before any image
        QTRY_COMPARE(dark.loaded(), 3);
        QTRY_VERIFY(!dark.isLoading());
        QCOMPARE(dark.fitting(), 3);
        QCOMPARE(pixel(dark), -1.0);
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("not used : 1"));
        dark.setImageSize(4, 3);
        QCOMPARE(dark.fitting(), 2);
        QCOMPARE(pixel(dark), 20.0);
        dark.setImageSize(5, 3);
        QCOMPARE(pixel(dark), 7.0);
        dark.setImageSize(6, 3);
        QCOMPARE(pixel(dark), -1.0);
        QCOMPARE(dark.fitting(), 0);
    }

    void itEndsInTheMiddleOfReading() {
        DarkData dark;
        dark.replace(m_files);
    }

  private:
    QTemporaryDir m_dir;
    QStringList m_files;
    QStringList m_wide;
};

TARNWICK_TEST_MAIN(QCoreApplication, TestDarkData)
#include "tst_darkdata.moc"
