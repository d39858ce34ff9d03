// Two outputs with the same settings have one encoder, and each gets its own frames.
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

#include "RecordRig.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12000;

EncoderSettings settingsOf(const char* label) {
  EncoderSettings settings;
  settings.label = QString::fromLatin1(label);
  settings.picture = {kSize, {25, 1}, 1000};
  return settings;
}

}  // namespace

class TestSharedEncoder : public QObject {
  Q_OBJECT

 private:
  /// An output with a file.
  struct Taker {
    std::shared_ptr<FileTarget> file;
    std::unique_ptr<OutputSlot> slot;

    QVector<int> numbers(QByteArray* complaints = nullptr) const {
      return numbersIn(VideoJudge::decodeLuma(file->fileName(), complaints), kSize);
    }
    bool end() {
      slot->finish();
      return slot->waitFinished(kFinishMs);
    }
  };

  Taker start(const char* label, const Taker* running = nullptr) { return start(settingsOf(label), running); }
  Taker start(const EncoderSettings& settings, const Taker* running = nullptr) {
    FileSettings file;
    file.folder = folder_->path();
    file.name = settings.label;
    Taker taker;
    taker.file = std::make_shared<FileTarget>(file);
    taker.slot = std::make_unique<OutputSlot>(settings, OutputSlot::Targets{taker.file}, *janitor_,
                                              running ? running->slot->encoder() : nullptr);
    return taker;
  }
  /// As the engine does, without waiting for the encoder.
  void push(const Taker& taker, int count) {
    for (int i = 0; i < count; ++i)
      taker.slot->encoder()->pushFrame(patternFrame(pool_, next_++));
  }
  bool pushAndWait(const Taker& taker, int count) {
    push(taker, count);
    return QTest::qWaitFor([&] { return taker.slot->encoder()->figures().framesEncoded >= next_; }, 10'000);
  }

  std::unique_ptr<QTemporaryDir> folder_;
  std::unique_ptr<Janitor> janitor_;
  FramePool pool_{kSize};
  int next_ = 0;

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }
  void init() {
    folder_ = std::make_unique<QTemporaryDir>();
    janitor_ = std::make_unique<Janitor>();
    next_ = 0;
  }

  void eachGetsTheFramesOfItsOwnTime_data() {
    QTest::addColumn<bool>("firstGoesOn");
    QTest::newRow("the second stops") << true;
    QTest::newRow("the first stops") << false;
  }
  void eachGetsTheFramesOfItsOwnTime() {
    QFETCH(bool, firstGoesOn);
    Taker first = start("the recording");
    // Frames still wait for the encoder at the start and at the stop of each.
    push(first, 12);
    QTest::ignoreMessage(QtInfoMsg, "the stream shares the encoder of the recording");
    Taker second = start("the stream", &first);
    QCOMPARE(second.slot->encoder(), first.slot->encoder());
    QVERIFY(pushAndWait(first, 10));
    push(first, 13);
    Taker& stops = firstGoesOn ? second : first;
    Taker& goesOn = firstGoesOn ? first : second;
    stops.slot->finish();
    QVERIFY(pushAndWait(goesOn, 12));
    QVERIFY(stops.slot->waitFinished(kFinishMs));
    QCOMPARE(stops.slot->report().state, KorviaShowOutputState::Finished);
    QVERIFY(pushAndWait(goesOn, 12));
    QVERIFY(goesOn.end());

    const int end = 59;
    QCOMPARE(next_, end);
    QByteArray complaints;
    QCOMPARE(first.numbers(&complaints), countFrom(0, firstGoesOn ? end : 35));
    QCOMPARE(second.numbers(&complaints), countFrom(12, firstGoesOn ? 35 : end));
    QCOMPARE(complaints, QByteArray());
    const VideoVerdict verdict = VideoJudge::judge(first.file->fileName());
    QVERIFY(areSpaced(verdict.pts, 0.04, countTo(verdict.frames)));
    // One key frame for the second one, and none for a stop.
    QCOMPARE(verdict.keyFrames, QVector<int>({0, 12}));
    const VideoVerdict own = VideoJudge::judge(second.file->fileName());
    QCOMPARE(own.pts.value(0, -1), 0.0);
    QVERIFY(areSpaced(own.pts, 0.04, countTo(own.frames)));
    QCOMPARE(own.keyFrames, QVector<int>({0}));
    QCOMPARE(first.slot->figures().framesEncoded, qint64(firstGoesOn ? end : 35));
    QCOMPARE(second.slot->figures().framesEncoded, qint64(firstGoesOn ? 23 : end - 12));
    QCOMPARE(first.slot->figures().framesDropped + second.slot->figures().framesDropped, qint64(0));
  }

  void onlyOneThatMakesTheSameIsShared_data() {
    QTest::addColumn<int>("change");
    QTest::newRow("size") << 0;
    QTest::newRow("bitrate") << 1;
    QTest::newRow("bitrate of the sound") << 2;
    QTest::newRow("accelerator") << 3;
    QTest::newRow("frame rate") << 4;
  }
  void onlyOneThatMakesTheSameIsShared() {
    QFETCH(int, change);
    Taker first = start("the recording");
    EncoderSettings other = settingsOf("the stream");
    if (change == 0)
      other.picture.size = {160, 90};
    else if (change == 1)
      other.picture.kbps = 1001;
    else if (change == 2)
      other.soundKbps = 64;
    else if (change == 3)
      other.accelerator = EncodeAcceleratorIntegratedGpu;
    else
      other.picture.rate = {30, 1};
    Taker second = start(other, &first);
    QVERIFY(second.slot->encoder() != first.slot->encoder());
    QVERIFY(first.end() && second.end());
  }

  void oneThatHasEndedIsNotShared() {
    Taker first = start("the recording");
    push(first, 5);
    QVERIFY(first.end());
    Taker second = start("the stream", &first);
    QVERIFY(second.slot->encoder() != first.slot->encoder());
    push(second, 5);
    QVERIFY(second.end());
    QCOMPARE(second.numbers(), countFrom(5, 10));
  }

  void oneStopsBeforeItsFirstFrame() {
    Taker first = start("the recording");
    QVERIFY(pushAndWait(first, 5));
    Taker second = start("the stream", &first);
    second.slot->finish();
    QVERIFY(pushAndWait(first, 5));
    QVERIFY(second.slot->waitFinished(kFinishMs));
    QVERIFY(first.end());
    QCOMPARE(first.numbers(), countTo(10));
    QCOMPARE(second.slot->figures().framesEncoded, qint64(0));
  }

  void framesComeAtOnceWhileOneIsLive() {
    EncoderSettings recording = settingsOf("the recording");
    recording.burstFrames = 5;
    Taker first = start(recording);
    push(first, 5);
    QTRY_VERIFY(first.slot->figures().framesEncoded >= 4);
    Taker live = start("the stream", &first);
    push(first, 2);
    QTRY_COMPARE(first.slot->figures().framesEncoded, qint64(7));
    live.slot->finish();
    // From here on frames wait for their group again.
    push(first, 4);
    QVERIFY(!QTest::qWaitFor([&] { return first.slot->figures().framesEncoded > 7; }, 200));
    push(first, 1);
    QTRY_COMPARE(first.slot->figures().framesEncoded, qint64(12));
    QVERIFY(live.slot->waitFinished(kFinishMs));
    QVERIFY(first.end());
    QCOMPARE(first.numbers(), countTo(12));
    QCOMPARE(live.numbers(), countFrom(5, 7));
  }

  void framesAreLostForWhoRanThen() {
    EncoderSettings small = settingsOf("the recording");
    small.queueCapacity = 4;
    Gate gate;
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    Taker first = start(small);
    first.slot->encoder()->pushFrame(gatedFrame(gate, {640, 360}));
    QVERIFY(gate.waitReached());
    push(first, 10);
    QVERIFY(first.slot->figures().framesDropped >= 6);
    Taker second = start("the stream", &first);
    QCOMPARE(second.slot->figures().framesDropped, qint64(0));
    push(first, 1);
    const qint64 both = second.slot->figures().framesDropped;
    QCOMPARE(both, qint64(1));
    const qint64 untilStop = first.slot->figures().framesDropped;
    first.slot->finish();
    push(first, 1);
    QCOMPARE(first.slot->figures().framesDropped, untilStop);
    QCOMPARE(second.slot->report().droppedFrames, qint64(2));
    gate.open();
    QVERIFY(second.end());
    QVERIFY(first.slot->waitFinished(kFinishMs));
  }

  void aFailureIsToldByBoth() {
    EncoderSettings wide = settingsOf("the recording");
    wide.picture.size = {20000, 16};  // more than H.264 has levels for
    Taker first = start(wide);
    wide.label = QStringLiteral("the stream");
    Taker second = start(wide, &first);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^the recording cannot be encoded : .+"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^the stream cannot be encoded : .+"));
    push(first, 1);
    for (const Taker* taker : {&first, &second}) {
      QVERIFY(taker->slot->waitFinished(kFinishMs));
      QTRY_COMPARE(taker->slot->report().state, KorviaShowOutputState::Failed);
      QVERIFY(!taker->slot->report().reason.isEmpty());
    }
    // One that starts now has an encoder of its own.
    Taker third = start("the stream", &first);
    QVERIFY(third.slot->encoder() != first.slot->encoder());
    QVERIFY(third.end());
  }
};

QTEST_GUILESS_MAIN(TestSharedEncoder)
#include "tst_shared_encoder.moc"
