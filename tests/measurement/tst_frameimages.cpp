#include <QSignalSpy>

#include "SameBits.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "measurement/FrameImages.h"

namespace {
constexpr int Side = 1200;  // takes longer than a blink, but on the fastest machines
}

class TestFrameImages : public QObject {
    Q_OBJECT

  private slots:
    /// What is asked for while an image is made waits; only the newest of it is made.
    void theNewestComes() {
        const FrameSet i1 =
            tinyStack(Side, Side, {1, 2, 3, 4, 5, 6, 7, 8},
                      [](int i, int x, int y) { return static_cast<quint16>(x * y + 100 * i); });
        const AbsorptionSource source(i1, FrameSet(), Side, Side);
        int asked = 0;
        const auto ask = [&](int i) {
            return [&, i] {
                ++asked;
                return FrameImages::Request{
                    FrameView::Kind::Absorption, 0.0, i1.at(i)->energy,
                    std::make_shared<const PixelPass>(PixelPass::absorption(source, i1.at(i))), 2};
            };
        };
        const auto key = [](int i) { return FrameImages::Key{quint64(i)}; };
        FrameImages images;
        QSignalSpy ready(&images, &FrameImages::ready);
        QVERIFY(images.now(key(0), ask(0))->to == 1.0 && asked == 1);
        const quint64 first = images.now(key(0), ask(0))->serial;
        QCOMPARE(asked, 1);
        for (int i = 1; i < 8; ++i) {
            const FrameImage* image = images.soon(key(i), ask(i));
            QVERIFY(image != nullptr && (image->serial == first || image->serial > first));
        }
        for (int repeated = 0; repeated < 3; ++repeated) {
            images.soon(key(7), ask(7));
        }
        QVERIFY(asked <= 8);
        QTRY_VERIFY(!images.isBusy());
        const FrameImage* last = images.soon(key(7), ask(7));
        QVERIFY(asked <= 8 && last->to == 8.0);
        FrameImages others;
        const FrameImage* same = others.now(key(7), ask(7));
        QVERIFY(same->low == last->low && same->high == last->high);
        for (int p = 0; p < Side; ++p) {
            QVERIFY(::same(same->pixels.at(p, p), last->pixels.at(p, p)));
        }
        // Stopped in the middle, the last image stays; nothing comes of the one under way.
        images.soon(key(2), ask(2));
        images.soon(key(3), ask(3));
        images.stop();
        const int told = ready.count();
        QTest::qWait(20);
        QCOMPARE(ready.count(), told);
        QVERIFY(!images.isBusy() && images.now(key(4), ask(4))->to == 5.0);
        images.soon(key(5), ask(5));  // goes while it works
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFrameImages)
#include "tst_frameimages.moc"
