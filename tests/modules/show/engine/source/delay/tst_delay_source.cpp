// A delay is exact to the frame and to the sample, in memory and in a file; what it does on pause, after the
// end of the other channel, after stalls and without a disk.
#include <QtTest>
#include <memory>

#include "DelayRig.h"
#include "support/AllocationCounter.h"

using namespace korvia;
using namespace korvia::test;

Q_DECLARE_METATYPE(korvia::FrameRate)
Q_DECLARE_METATYPE(korvia::test::DelayRig::Store)
Q_DECLARE_METATYPE(korvia::test::DelayRig::Order)

namespace {

using Store = DelayRig::Store;
using Order = DelayRig::Order;

constexpr FrameRate kRate25{25, 1};

}  // namespace

class DelaySourceTest : public QObject {
  Q_OBJECT

 private:
  static void addStores() {
    QTest::addColumn<Store>("store");
    QTest::newRow("memory") << Store::Memory;
    QTest::newRow("file") << Store::File;
  }

 private slots:
  void isExact_data() {
    QTest::addColumn<FrameRate>("rate");
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<int>("frames");
    QTest::addColumn<Store>("store");
    QTest::addColumn<Order>("order");
    const FrameRate ntsc{30000, 1001};
    QTest::newRow("5 s, memory") << kRate25 << 5000 << 125 << Store::Memory << Order::DelayFirst;
    QTest::newRow("5 s, file") << kRate25 << 5000 << 125 << Store::File << Order::DelayLast;
    QTest::newRow("29.97, memory") << ntsc << 2000 << 60 << Store::Memory << Order::DelayLast;
    QTest::newRow("29.97, file") << ntsc << 2000 << 60 << Store::File << Order::DelayFirst;
    QTest::newRow("shortest, first") << kRate25 << 0 << 2 << Store::Memory << Order::DelayFirst;
    QTest::newRow("shortest, last") << kRate25 << 0 << 2 << Store::Memory << Order::DelayLast;
    QTest::newRow("60") << FrameRate{60, 1} << 100 << 6 << Store::File << Order::DelayFirst;
  }

  void isExact() {
    QFETCH(FrameRate, rate);
    QFETCH(int, delayMs);
    QFETCH(int, frames);
    QFETCH(Store, store);
    QFETCH(Order, order);
    DelayRig rig(delayMs, rate, store);
    QCOMPARE(rig->plan().frames, frames);
    // Long enough for every place of the file to be used twice.
    for (int number = 1; number <= 2 * frames + 60; ++number)
      QCOMPARE(rig.tick(numbered(number), 1, order), number > frames ? number - frames : -1);
    QCOMPARE(rig.wrongSamples(rate.samplesIn(0, frames, kSampleRate)), 0);
    QCOMPARE(rig->figures().framesHeld, qint64(0));
    QCOMPARE(rig->figures().framesSkipped, qint64(0));
  }

  void stillPicturesStay_data() { addStores(); }

  // One picture lasts longer than the file has places.
  void stillPicturesStay() {
    QFETCH(Store, store);
    DelayRig rig(400, kRate25, store);
    const FrameRef still = numbered(1000);
    for (int number = 1; number <= 120; ++number) {
      const int shown = rig.tick(number < 100 ? still : numbered(number));
      QCOMPARE(shown, number <= 10 ? -1 : number < 110 ? 1000 : number - 10);
    }
  }

  void missedTicksRepeatThePicture_data() { addStores(); }

  void missedTicksRepeatThePicture() {
    QFETCH(Store, store);
    DelayRig rig(400, kRate25, store);
    int tick = 0;
    while (tick < 30)
      rig.tick(numbered(++tick));
    // Ticks 31 to 33 are missed and show picture 30.
    tick += 4;
    QCOMPARE(rig.tick(numbered(tick), 4), 24);
    while (tick < 60) {
      ++tick;
      const int due = tick - 10;
      QCOMPARE(rig.tick(numbered(tick)), due > 30 && due < 34 ? 30 : due);
    }
    QCOMPARE(rig.wrongSamples(10 * 1920), 0);
  }

  void stallsLongerThanTheDelay_data() { addStores(); }

  void stallsLongerThanTheDelay() {
    QFETCH(Store, store);
    DelayRig rig(400, kRate25, store);
    int tick = 0;
    while (tick < 30)
      rig.tick(numbered(++tick));
    tick += 100;
    QVERIFY(rig.tick(numbered(tick), 100) >= 20);
    // What is due was missed, so the picture before the stall stays, or in the file an older one.
    while (tick < 139)
      QVERIFY(rig.tick(numbered(++tick)) <= 30);
    while (tick < 150) {
      ++tick;
      QCOMPARE(rig.tick(numbered(tick)), tick - 10);
    }
    QCOMPARE(rig.wrongSamples(10 * 1920), 0);
  }

  void playsOutWhatItHas_data() { addStores(); }

  void playsOutWhatItHas() {
    QFETCH(Store, store);
    DelayRig rig(400, kRate25, store);
    for (int number = 1; number <= 30; ++number)
      rig.tick(numbered(number));
    rig.setSilent(true);
    for (int number = 31; number <= 40; ++number)
      QCOMPARE(rig.tick(FrameRef()), number - 10);
    QVERIFY(rig.lastSample() != 0);
    for (int number = 0; number < 5; ++number)
      QCOMPARE(rig.tick(FrameRef()), -1);
    QCOMPARE(rig.lastSample(), 0.0F);
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void pauseKeepsThePicture_data() {
    QTest::addColumn<int>("state");
    QTest::newRow("pause") << int(Paused);
    QTest::newRow("stop") << int(Stopped);
    QTest::newRow("hold") << int(Playing);
  }

  void pauseKeepsThePicture() {
    QFETCH(int, state);
    DelayRig rig(400, kRate25, Store::Memory);
    int number = 0;
    while (number < 30)
      rig.tick(numbered(++number));
    if (state == Paused)
      rig->pause();
    else if (state == Stopped)
      rig->stop();
    else
      rig->setHold(true);
    QCOMPARE(rig->getPlayState(), state);
    while (number < 50)
      QCOMPARE(rig.tick(numbered(++number)), 20);
    QVERIFY(!rig.lastWasSound());
    rig->setHold(false);
    rig->play();
    ++number;
    QCOMPARE(rig.tick(numbered(number)), number - 10);
    QVERIFY(rig.lastWasSound());
    // The fades are over: pictures and sound are as late as before.
    ++number;
    rig.tick(numbered(number));
    QVERIFY(rig.lastSample() != 0);
  }

  void alphaIsKeptInMemory() {
    DelayRig rig(80, kRate25, Store::Memory);
    FramePool pool(kDelaySize, FrameAlpha::Plane);
    MutableFrame frame = pool.acquire();
    frame->fillBlack();
    frame->writablePlane(Frame::A)[0] = 77;
    const FrameRef picture = std::move(frame).publish();
    rig.tick(picture);
    rig.tick(picture);
    const FrameRef shown = rig->pullFrame(1);
    QVERIFY(shown && shown->hasAlpha());
    QCOMPARE(int(shown->plane(Frame::A)[0]), 77);
  }

  // The frames of a camera come from few buffers, which it needs back.
  void framesAreNotKept_data() { addStores(); }

  void framesAreNotKept() {
    QFETCH(Store, store);
    DelayRig rig(400, kRate25, store);
    static std::atomic<int> inUse;
    inUse = 0;
    std::vector<std::uint8_t> samples(64 * 36, 100);
    for (int number = 1; number <= 30; ++number) {
      Frame::External external;
      for (const int plane : kOpaquePlanes) {
        external.data[plane] = samples.data();
        external.stride[plane] = 64;
      }
      external.release = [](void*) { --inUse; };
      ++inUse;
      rig.tick(FrameRef::adopt(new Frame(kDelaySize, external)));
      QVERIFY2(inUse <= 9, qPrintable(QString::number(inUse)));
    }
    rig->close();
  }

  void anotherSizeIsFitted_data() { addStores(); }

  void anotherSizeIsFitted() {
    QFETCH(Store, store);
    DelayRig rig(80, kRate25, store);
    const FrameRef large = flat({128, 72}, 60);
    for (int number = 0; number < 4; ++number)
      rig.tick(large);
    QCOMPARE(rig.tick(large), 60 + 250 * 60);
    QVERIFY(rig->pullFrame(1)->size() == kDelaySize);
  }

  void steadyStateDoesNotAllocate() {
    DelayRig rig(400, kRate25, Store::Memory);
    std::vector<FrameRef> pictures;
    for (int number = 1; number <= 40; ++number)
      pictures.push_back(numbered(number));
    for (int round = 0; round < 2; ++round) {
      const qint64 before = allocationCalls();
      for (const FrameRef& picture : pictures) {
        rig->pullFrame(1);
        rig->tap()->onTappedPicture(picture, 1);
      }
      if (round > 0)
        QCOMPARE(allocationCalls(), before);
    }
  }

  void noRoomOnTheDisk() {
    WarningKeeper log;
    DelayLimits limits;
    DelayRig rig(400, kRate25, Store::File, limits);
    QTemporaryDir folder;
    QFile inTheWay(folder.path() + "/file");
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    SourceRig other(kDelaySize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDelay;
    info.delayChannel = MediaChannel;
    info.delayCachePath = inTheWay.fileName();
    limits.memoryBytes = 0;
    const auto source = std::make_shared<DelaySource>(other.context(), info, tagKorviaFormatInfo(), limits);
    other.open(source);
    QTRY_COMPARE(other->getPlayState(), int(Error));
    QVERIFY2(other.failureReason().startsWith("file cannot be made"), qPrintable(other.failureReason()));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith("delay cannot be stored : "));
    for (int number = 1; number < 1000; ++number) {
      QVERIFY(!other->pullFrame(1));
      source->tap()->onTappedPicture(numbered(number % 20), 1);
    }
    QCOMPARE(other.linkRate(), 0.0F);
  }

  // The disk cannot keep up when nobody waits for it; the ticks go on.
  void aSlowDiskCostsPicturesOnly() {
    WarningKeeper log;
    DelayRig rig(400, kRate25, Store::File);
    const FrameRef picture = numbered(1);
    const FrameRef other = numbered(2);
    for (int number = 0; number < 20'000 && rig->figures().framesSkipped == 0; ++number) {
      rig->pullFrame(1);
      rig->tap()->onTappedPicture(number % 2 ? picture : other, 1);
    }
    QVERIFY(rig->figures().framesSkipped > 0);
    QTRY_VERIFY(!log.lines().isEmpty());
    QCOMPARE(log.lines().first(), QString("disk is too slow for the delay, pictures are left out"));
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void limitShortensTheDelay() {
    WarningKeeper log;
    DelayLimits limits;
    limits.fileBytes = 64 * 4096;
    DelayRig rig(60'000, kRate25, Store::File, limits);
    QCOMPARE(log.lines(), QStringList{"delay of 60000 ms does not fit into its limit, shortened to 1600 ms"});
    for (int number = 1; number <= 100; ++number)
      QCOMPARE(rig.tick(flat(kDelaySize, number)), number > 40 ? 251 * (number - 40) : -1);
  }
};

QTEST_GUILESS_MAIN(DelaySourceTest)
#include "tst_delay_source.moc"
