#include <QtTest>

#include "FrameRate.h"

using korvia::FrameRate;

class TestFrameRate : public QObject {
  Q_OBJECT

 private slots:
  void framesAndTimeStayExactForYears() {
    const FrameRate ntsc{30000, 1001};
    QCOMPARE(ntsc.nsOf(1), std::int64_t(33'366'666));
    QCOMPARE(ntsc.nsOf(30000), std::int64_t(1'001'000'000'000));
    QCOMPARE(ntsc.framesIn(1'001'000'000'000), std::int64_t(30000));
    QCOMPARE(ntsc.framesIn(1'000'999'999'999), std::int64_t(29999));
    // Ten years.
    QCOMPARE(ntsc.nsOf(9'450'549'450), std::int64_t(315'333'333'315'000'000));
    QCOMPARE(ntsc.framesIn(315'333'333'315'000'000), std::int64_t(9'450'549'450));
    const FrameRate pal{25000, 1000};
    QCOMPARE(pal.nsOf(25), std::int64_t(1'000'000'000));
    QCOMPARE(pal.framesIn(315'360'000'000'000'000), std::int64_t(7'884'000'000));
  }

  void ratesOutOfRangeAreNotValid() {
    QVERIFY((FrameRate{30000, 1001}).isValid());
    QVERIFY((FrameRate{FrameRate::kPartMax, FrameRate::kPartMax}).isValid());
    QVERIFY((FrameRate{1000, 1}).isValid());
    QVERIFY(!(FrameRate{1001, 1}).isValid());
    QVERIFY(!(FrameRate{0, 1}).isValid());
    QVERIFY(!(FrameRate{25, 0}).isValid());
    QVERIFY(!(FrameRate{-25, 1}).isValid());
    QVERIFY(!(FrameRate{FrameRate::kPartMax + 1, 1}).isValid());
    QVERIFY(!(FrameRate{25, FrameRate::kPartMax + 1}).isValid());
  }

  void samplesOfWholeRatesAreTheSameForEachFrame() {
    for (std::int64_t frame = 0; frame < 1000; ++frame)
      QCOMPARE((FrameRate{25, 1}).samplesIn(frame, 1, 48000), std::int64_t(1920));
    QCOMPARE((FrameRate{25, 1}).samplesIn(7, 0, 48000), std::int64_t(0));
  }

  void samplesAddUpOverTenMillionFrames() {
    const FrameRate ntsc{30000, 1001};
    constexpr std::int64_t kFrames = 10'000'000;
    // 8008 samples in five frames, spread as evenly as whole samples can be.
    constexpr std::int64_t kCycle[] = {1601, 1602, 1601, 1602, 1602};
    std::int64_t sum = 0;
    for (std::int64_t frame = 0; frame < kFrames; ++frame) {
      const std::int64_t samples = ntsc.samplesIn(frame, 1, 48000);
      if (samples != kCycle[frame % 5])
        QFAIL(qPrintable(QStringLiteral("frame %1 has %2 samples").arg(frame).arg(samples)));
      sum += samples;
    }
    QCOMPARE(sum, kFrames / 5 * 8008);
    QCOMPARE(ntsc.samplesIn(0, kFrames, 48000), sum);
  }

  void missedFramesLeaveNoSampleOut() {
    const FrameRate ntsc{30000, 1001};
    std::int64_t frame = 0;
    std::int64_t sum = 0;
    for (int step = 0; frame < 1'000'000; ++step) {
      const std::int64_t count = 1 + step % 7;
      sum += ntsc.samplesIn(frame, count, 44100);
      frame += count;
    }
    QCOMPARE(sum, ntsc.samplesIn(0, frame, 44100));
  }

  void samplesStayExactForYears() {
    // Ten years of 30000/1001: the place is a multiple of five frames.
    QCOMPARE((FrameRate{30000, 1001}).samplesIn(9'450'549'450, 5, 48000), std::int64_t(8008));
    QCOMPARE((FrameRate{30000, 1001}).samplesIn(9'450'549'450, 1, 48000), std::int64_t(1601));
  }
};

QTEST_APPLESS_MAIN(TestFrameRate)
#include "tst_frame_rate.moc"
