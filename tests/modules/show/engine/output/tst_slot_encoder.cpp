#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>
#include <atomic>
#include <numeric>
#include <random>

#include "PacketRig.h"
#include "RecordRig.h"
#include "engine/output/SlotEncoder.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12000;

EncoderSettings encoderSettings() {
  EncoderSettings settings;
  settings.label = QStringLiteral("the slot");
  settings.picture.size = kSize;
  settings.picture.kbps = 1000;
  return settings;
}

FileSettings fileSettings(const QTemporaryDir& folder, const char* name) {
  FileSettings settings;
  settings.folder = folder.path();
  settings.name = QString::fromLatin1(name);
  return settings;
}

/// An encoder whose frames are counted.
struct Rig {
  explicit Rig(const EncoderSettings& settings = encoderSettings())
      : encoder(settings, janitor), share(encoder.addShare(settings)) {}

  /// Feeds frames and waits until all are with the targets.
  bool feed(int count) {
    const int end = next + count;
    for (; next < end; ++next) {
      QElapsedTimer timer;
      timer.start();
      encoder.pushFrame(patternFrame(pool, next));
      longestPushMs = std::max(longestPushMs, timer.elapsed());
      if (!waitEncoded(next - 8))
        return false;
    }
    return waitEncoded(end);
  }
  bool waitEncoded(qint64 count) {
    return QTest::qWaitFor([&] { return encoder.figures().framesEncoded >= count; }, 10000);
  }
  bool finish() {
    encoder.finish();
    return encoder.waitFinished(kFinishMs);
  }

  Janitor janitor;
  SlotEncoder encoder;
  std::shared_ptr<EncoderShare> share;
  FramePool pool{kSize};
  int next = 0;
  qint64 longestPushMs = 0;
};

/// A texture that moves, another one every 50 frames, under some noise: more than the bitrate has room for.
FrameRef textureFrame(FramePool& pool, int number) {
  MutableFrame frame = pool.acquire();
  std::minstd_rand random(static_cast<unsigned>(number) + 1);
  const int scene = number / 50;
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < frame->planeHeight(plane); ++y) {
      std::uint8_t* row = frame->writablePlane(plane) + static_cast<std::ptrdiff_t>(y) * frame->stride(plane);
      for (int x = 0; x < frame->planeWidth(plane); ++x) {
        const double wave = std::sin((x + 3 * number) * (0.11 + 0.02 * scene)) *
                            std::sin((y - 2 * number) * (0.23 - 0.01 * scene) + x * 0.05);
        row[x] = static_cast<std::uint8_t>(125 + 70 * wave + random() % 16);
      }
    }
  }
  return std::move(frame).publish();
}

QVector<int> numbersOf(const FileTarget& file, QByteArray* complaints = nullptr) {
  return numbersIn(VideoJudge::decodeLuma(file.fileName(), complaints), kSize);
}

}  // namespace

class TestSlotEncoder : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void hangingTargetHoldsUpNobody_data() {
    QTest::addColumn<qint64>("queueBytes");
    QTest::addColumn<qint64>("queueNs");
    QTest::newRow("bytes") << qint64(30'000) << qint64(3600'000'000'000);
    QTest::newRow("time") << qint64(100'000'000) << qint64(500'000'000);
  }
  void hangingTargetHoldsUpNobody() {
    QFETCH(qint64, queueBytes);
    QFETCH(qint64, queueNs);
    QTemporaryDir folder;
    Gate gate;
    FileSettings hangs = fileSettings(folder, "hangs");
    hangs.target.queueBytes = queueBytes;
    hangs.target.queueNs = queueNs;
    std::atomic<bool> diskHangs{false};
    hangs.freeBytes = [&gate, &diskHangs](const QString&) {
      if (diskHangs)
        gate.pass();
      return qint64(-1);
    };
    const auto good = std::make_shared<FileTarget>(fileSettings(folder, "good"));
    const auto hanging = std::make_shared<FileTarget>(hangs);
    Rig rig;
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    rig.share->join(good);
    rig.share->join(hanging);
    for (int i = 0; i < 20; ++i) {
      QVERIFY(rig.feed(1));
      QTRY_COMPARE(hanging->figures().queuedBytes, qint64(0));
    }
    diskHangs = true;
    QVERIFY(gate.waitReached());
    for (int i = 0; i < 100; ++i) {
      QVERIFY(rig.feed(1));
      const TargetFigures figures = hanging->figures();
      QVERIFY(figures.queuedBytes <= queueBytes);
      QVERIFY(figures.queuedNs <= queueNs);
    }
    QVERIFY(hanging->figures().framesDropped > 0);
    QCOMPARE(rig.encoder.figures().framesDropped, qint64(0));
    QVERIFY2(rig.longestPushMs < 1000, qPrintable(QString::number(rig.longestPushMs)));
    gate.open();
    QTRY_COMPARE(hanging->figures().queuedBytes, qint64(0));
    for (int i = 0; i < 60; ++i) {
      QVERIFY(rig.feed(1));
      QTRY_COMPARE(hanging->figures().queuedBytes, qint64(0));
    }
    QVERIFY(rig.finish());
    QVERIFY(good->waitFinished(kFinishMs) && hanging->waitFinished(kFinishMs));

    QByteArray complaints;
    QCOMPARE(numbersOf(*good, &complaints), countTo(180));
    QVERIFY(areSpaced(VideoJudge::judge(good->fileName()).pts, 0.04, countTo(180)));
    QCOMPARE(good->figures().framesDropped, qint64(0));
    const QVector<int> kept = numbersOf(*hanging, &complaints);
    QCOMPARE(complaints, QByteArray());
    QCOMPARE(qint64(kept.size()), 180 - hanging->figures().framesDropped);
    QCOMPARE(kept.mid(0, 20), countTo(20));
    QCOMPARE(kept.mid(kept.size() - 30), countFrom(150, 180));
    for (int i = 1; i < kept.size(); ++i)
      QVERIFY2(kept[i] == kept[i - 1] + 1 || (kept[i] > kept[i - 1] && kept[i] % 50 == 0),
               qPrintable(QString::number(kept[i])));
    QVERIFY(areSpaced(VideoJudge::judge(hanging->fileName()).pts, 0.04, kept));
  }

  void joinsAtOnceMakeOneKeyFrame() {
    QTemporaryDir folder;
    const auto first = std::make_shared<FileTarget>(fileSettings(folder, "first"));
    const auto second = std::make_shared<FileTarget>(fileSettings(folder, "second"));
    const auto third = std::make_shared<FileTarget>(fileSettings(folder, "third"));
    Rig rig;
    rig.share->join(first);
    QVERIFY(rig.feed(20));
    rig.share->join(second);
    rig.share->join(third);
    QVERIFY(rig.feed(40));
    QVERIFY(rig.finish());
    QVERIFY(first->waitFinished(kFinishMs) && second->waitFinished(kFinishMs) &&
            third->waitFinished(kFinishMs));

    QCOMPARE(numbersOf(*first), countTo(60));
    const VideoVerdict verdict = VideoJudge::judge(first->fileName());
    QVERIFY(areSpaced(verdict.pts, 0.04, countTo(60)));
    QCOMPARE(verdict.keyFrames, QVector<int>({0, 20}));
    for (const auto& late : {second, third}) {
      QByteArray complaints;
      QCOMPARE(numbersOf(*late, &complaints), countFrom(20, 60));
      QCOMPARE(complaints, QByteArray());
      const VideoVerdict own = VideoJudge::judge(late->fileName());
      QCOMPARE(own.pts.value(0), 0.0);
      QCOMPARE(own.keyFrames.value(0, -1), 0);
      QVERIFY(areSpaced(own.pts, 0.04, countTo(40)));
    }
  }

  void oneLeavesTheOtherGoesOn() {
    QTemporaryDir folder;
    const auto stays = std::make_shared<FileTarget>(fileSettings(folder, "stays"));
    const auto leaves = std::make_shared<FileTarget>(fileSettings(folder, "leaves"));
    Rig rig;
    rig.share->join(stays);
    rig.share->join(leaves);
    QVERIFY(rig.feed(25));
    rig.share->leave(*leaves);
    QVERIFY(leaves->waitFinished(kFinishMs));
    QCOMPARE(leaves->figures().state, TargetState::Finished);
    QCOMPARE(numbersOf(*leaves), countTo(25));
    QVERIFY(rig.feed(25));
    QVERIFY(rig.finish());
    QVERIFY(stays->waitFinished(kFinishMs));
    QCOMPARE(numbersOf(*stays), countTo(50));
    QCOMPARE(VideoJudge::judge(stays->fileName()).keyFrames, QVector<int>({0}));
  }

  void failedTargetLeavesTheOthersAlone() {
    QTemporaryDir folder;
    const auto good = std::make_shared<FileTarget>(fileSettings(folder, "good"));
    const auto notes = std::make_shared<WriterNotes>();
    notes->failAt(10);
    const auto fails = std::make_shared<Target>(TargetSettings{}, std::make_unique<MemoryWriter>(notes));
    Rig rig;
    rig.share->join(good);
    rig.share->join(fails);
    QVERIFY(rig.feed(40));
    QVERIFY(fails->waitFinished(kFinishMs));
    QCOMPARE(fails->figures().state, TargetState::Failed);
    QVERIFY(rig.feed(20));
    QVERIFY(rig.finish());
    QVERIFY(good->waitFinished(kFinishMs));
    QCOMPARE(good->figures().state, TargetState::Finished);
    QCOMPARE(numbersOf(*good), countTo(60));
    QCOMPARE(rig.encoder.figures().framesDropped, qint64(0));
  }

  void nothingIsEncodedForNobody() {
    QTemporaryDir folder;
    Rig rig;
    for (; rig.next < 30; ++rig.next)
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
    const auto notes = std::make_shared<WriterNotes>();
    notes->failAt(5);
    const auto fails = std::make_shared<Target>(TargetSettings{}, std::make_unique<MemoryWriter>(notes));
    rig.share->join(fails);
    for (; !fails->waitFinished(0); ++rig.next) {
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
      QTest::qWait(5);
    }
    QCOMPARE(notes->keyFrames(), QVector<bool>({true, false, false, false, false}));
    QCOMPARE(notes->ptsNs().value(0), qint64(0));

    // One that comes later has a whole file all the same.
    const auto file = std::make_shared<FileTarget>(fileSettings(folder, "late"));
    const int first = rig.next;
    rig.share->join(file);
    for (; rig.next < first + 12; ++rig.next)
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
    QVERIFY(rig.finish());
    QVERIFY(file->waitFinished(kFinishMs));
    QByteArray complaints;
    QCOMPARE(numbersOf(*file, &complaints), countFrom(first, first + 12));
    QCOMPARE(complaints, QByteArray());
    QCOMPARE(rig.encoder.figures().framesDropped, qint64(0));
  }

  void encoderThatFailsEndsItsTargets() {
    QTemporaryDir folder;
    EncoderSettings settings = encoderSettings();
    settings.picture.size = {20000, 16};  // more than H.264 has levels for
    const auto file = std::make_shared<FileTarget>(fileSettings(folder, "none"));
    Rig rig(settings);
    rig.share->join(file);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^the slot cannot be encoded : .+"));
    rig.encoder.pushFrame(patternFrame(rig.pool, 0));
    QVERIFY(rig.encoder.waitFinished(kFinishMs));
    rig.encoder.pushFrame(patternFrame(rig.pool, 1));
    QVERIFY(file->waitFinished(kFinishMs));
    QVERIFY(QDir(folder.path()).isEmpty());
  }

  void framesAreEncodedInGroups() {
    QTemporaryDir folder;
    EncoderSettings settings = encoderSettings();
    settings.burstFrames = 5;
    const auto file = std::make_shared<FileTarget>(fileSettings(folder, "groups"));
    Rig rig(settings);
    rig.share->join(file);
    const auto push = [&rig](int end) {
      for (; rig.next < end; ++rig.next)
        rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
    };
    push(4);
    QTest::qWait(200);
    QCOMPARE(rig.encoder.figures().framesEncoded, qint64{0});
    push(5);
    QVERIFY(rig.waitEncoded(4));
    // The end does not wait for a whole group.
    push(7);
    QVERIFY(rig.finish());
    QVERIFY(file->waitFinished(kFinishMs));
    QCOMPARE(numbersOf(*file), QVector<int>({0, 1, 2, 3, 4, 5, 6}));
  }

  void theDelayAndTheTypesOfFramesAreMeasured() {
    constexpr int kHeldMs = 300;
    EncoderSettings settings = encoderSettings();
    settings.burstFrames = 5;
    const auto notes = std::make_shared<WriterNotes>();
    Rig rig(settings);
    rig.share->join(std::make_shared<Target>(TargetSettings{}, std::make_unique<MemoryWriter>(notes)));
    // Four frames wait for the fifth.
    QElapsedTimer held;
    for (; rig.next < 4; ++rig.next)
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
    held.start();
    QTRY_VERIFY(held.elapsed() >= kHeldMs);
    rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
    QTRY_VERIFY(!rig.encoder.figures().frameTypes.isEmpty());
    const EncoderFigures figures = rig.encoder.figures();
    QVERIFY2(figures.encodeDelayMs >= kHeldMs / 2 && figures.encodeDelayMs < 5000,
             qPrintable(QString::number(figures.encodeDelayMs)));
    QVERIFY2(figures.frameTypes.startsWith("I 1, P "), qPrintable(figures.frameTypes));
    QCOMPARE(figures.pictureLessSoundMs, qint64(0));
    QVERIFY(rig.finish());
    QCOMPARE(rig.encoder.figures().frameTypes, QString());
  }

  void theTimesOfPictureAndSoundAreCompared() {
    EncoderSettings settings = encoderSettings();
    settings.soundKbps = 96;
    Rig rig(settings);
    const auto notes = std::make_shared<WriterNotes>();
    rig.share->join(std::make_shared<Target>(TargetSettings{}, std::make_unique<MemoryWriter>(notes)));
    std::vector<float> silence(kSampleRate / 25);
    for (; rig.next < 12; ++rig.next) {
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
      rig.encoder.pushSound({silence.data(), silence.data(), kSampleRate / 25});
    }
    // The next picture waits for sound, which is delivered in packets of 21 ms as it comes.
    const auto isBehind = [&rig] {
      const qint64 ms = rig.encoder.figures().pictureLessSoundMs;
      return ms < 0 && ms >= -43;
    };
    QTRY_VERIFY(isBehind());
    QVERIFY(rig.finish());
  }

  void aGapInTheFramesDoesNotPutTheKeyFrameOff() {
    QTemporaryDir folder;
    const auto file = std::make_shared<FileTarget>(fileSettings(folder, "gap"));
    Rig rig;
    rig.share->join(file);
    QVERIFY(rig.feed(20));
    for (int i = 0; i < 100; ++i)
      rig.encoder.pushFrame(FrameRef());
    for (; rig.next < 100; ++rig.next) {
      rig.encoder.pushFrame(patternFrame(rig.pool, rig.next));
      QVERIFY(rig.waitEncoded(rig.next - 8));
    }
    QVERIFY(rig.finish());
    QVERIFY(file->waitFinished(kFinishMs));
    const VideoVerdict verdict = VideoJudge::judge(file->fileName());
    QCOMPARE(verdict.frames, 100);
    // Two seconds are over when the frames come again, and again 50 frames later.
    QCOMPARE(verdict.keyFrames, QVector<int>({0, 20, 70}));
  }

  void theBitrateIsKeptInEverySecond_data() {
    QTest::addColumn<int>("kbps");
    QTest::newRow("600") << 600;
    QTest::newRow("1500") << 1500;
  }
  void theBitrateIsKeptInEverySecond() {
    QFETCH(int, kbps);
    constexpr FrameSize kWide{640, 360};
    constexpr int kFrames = 500;
    constexpr int kSecond = 25;
    EncoderSettings settings = encoderSettings();
    settings.picture = {kWide, {kSecond, 1}, kbps};
    const auto notes = std::make_shared<WriterNotes>();
    Rig rig(settings);
    rig.share->join(std::make_shared<Target>(TargetSettings{}, std::make_unique<MemoryWriter>(notes)));
    FramePool pool(kWide);
    for (; rig.next < kFrames; ++rig.next) {
      // Black for two of twenty seconds.
      const bool black = rig.next >= 200 && rig.next < 250;
      rig.encoder.pushFrame(black ? pool.black() : textureFrame(pool, rig.next));
      QVERIFY(rig.waitEncoded(rig.next - 8));
    }
    QVERIFY(rig.finish());
    QTRY_COMPARE(notes->bytes().size(), kFrames);
    const QVector<qint64> bytes = notes->bytes();
    const auto rateOf = [&bytes, kbps](int first, int frames) {
      const qint64 sum = std::accumulate(bytes.begin() + first, bytes.begin() + first + frames, qint64{0});
      return static_cast<double>(sum) * 8 * kSecond / frames / 1000 / kbps;
    };
    for (int i = 0; i + kSecond <= kFrames; ++i)
      QVERIFY2(rateOf(i, kSecond) <= 1.1, qPrintable(QString("%1 at %2").arg(rateOf(i, kSecond)).arg(i)));
    QVERIFY2(rateOf(250, 250) >= 0.9, qPrintable(QString::number(rateOf(250, 250))));
  }

  void keyFramesComeEveryTwoSecondsOverCuts_data() {
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::addColumn<int>("interval");
    QTest::newRow("25") << 25 << 1 << 50;
    QTest::newRow("29.97") << 30000 << 1001 << 60;
  }
  void keyFramesComeEveryTwoSecondsOverCuts() {
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    QFETCH(int, interval);
    QTemporaryDir folder;
    EncoderSettings settings = encoderSettings();
    settings.picture.rate = {numerator, denominator};
    const auto file = std::make_shared<FileTarget>(fileSettings(folder, "cuts"));
    Rig rig(settings);
    rig.share->join(file);
    FramePool dark(kSize);
    // A cut every seven frames, which falls on a second of no stream.
    for (; rig.next < 130; ++rig.next) {
      const bool black = rig.next / 7 % 2 == 1;
      rig.encoder.pushFrame(black ? dark.black() : patternFrame(rig.pool, rig.next * 31));
      QVERIFY(rig.waitEncoded(rig.next - 8));
    }
    QVERIFY(rig.finish());
    QVERIFY(file->waitFinished(kFinishMs));
    const VideoVerdict verdict = VideoJudge::judge(file->fileName());
    QCOMPARE(verdict.frames, 130);
    QCOMPARE(verdict.keyFrames, QVector<int>({0, interval, 2 * interval}));
  }
};

QTEST_GUILESS_MAIN(TestSlotEncoder)
#include "tst_slot_encoder.moc"
