// Ten thousand takes, with any effect, duration and curve and with the lever in between, on an engine that is
// stepped as fast as it goes: each comes to its end once, and nothing is left behind.
#include <QApplication>
#include <QRandomGenerator>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/SoftwareBackend.h"
#include "engine/mix/Easing.h"
#include "support/Holdings.h"
#include "tagKorviaShowEngineInfo.h"

using namespace korvia;

namespace {

constexpr int kTakes = 10000;
constexpr int kSettled = 1000;
constexpr quint32 kSeed = 2026;
constexpr double kDurationMax = 4;
/// A tick stands for up to this many frames, as after a stall.
constexpr int kTickFramesMax = 8;
constexpr int kLeverEvery = 5;

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant&,
                  const QVariant&) override {
    if (eventId == ShowEventSwitchPosition && a1.toFloat() == 1.0F)
      ++ends;
    else if (eventId == ShowEventSelectChannel && a1.toULongLong() == PGMObject)
      program = a2.toInt();
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  int ends = 0;
  int program = 0;
};

}  // namespace

class TakeSoakTest : public QObject {
  Q_OBJECT

 private:
  Host host_;
  SoftwareBackend backend_;
  qint64 frame_ = 0;
  qint64 ticks_ = 0;

  void post(quint64 id, const QVariant& a1, const QVariant& a2 = {}, const QVariant& a3 = {},
            const QVariant& a4 = {}) {
    backend_.handleEvent({id, {a1, a2, a3, a4}});
  }
  void tick(int frames) {
    frame_ += frames;
    ++ticks_;
    backend_.frameStep({frame_, frames - 1});
  }
  void lever(double position) {
    post(ShowEventSwitchPosition, PGMObject, static_cast<float>(position));
    tick(1);
  }
  /// Up and down at random, then through to the end.
  void takeByLever(QRandomGenerator& random) {
    for (int i = random.bounded(6); i >= 0; --i)
      lever(random.bounded(1.0));
    if (random.bounded(3) == 0)
      lever(0);
    lever(1);
  }
  void takeByItself(int channel, QRandomGenerator& random) {
    post(ShowEventTake, channel, random.bounded(80), static_cast<float>(random.bounded(kDurationMax)),
         random.bounded(kEasingCount));
    const int before = host_.ends;
    for (int frames = 0; host_.ends == before && frames <= kDurationMax * 25 + kTickFramesMax;) {
      const int now = 1 + random.bounded(kTickFramesMax);
      tick(now);
      frames += now;
    }
  }

 private slots:
  void initTestCase() {
    backend_.begin(host_);
    tagKorviaShowEngineInfo info;
    info.format.width = 66;
    info.format.height = 50;
    post(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
    const QRgb colors[] = {0xFFC04020, 0xFF2060C0, 0xFF30A040};
    for (int i = 0; i < 3; ++i) {
      tagKorviaShowSourceInfo source;
      source.kind = SourceKindColor;
      source.color = colors[i];
      QVERIFY(backend_.openSource(static_cast<KorviaShowObjectID>(MediaChannel + i), source,
                                  tagKorviaFormatInfo(), nullptr));
    }
    post(ShowEventSelectChannel, PGMObject, MediaChannel);
  }

  void eachTakeEndsOnceAndLeavesNothing() {
    QRandomGenerator random(kSeed);
    Holdings settled;
    for (int take = 1; take <= kTakes; ++take) {
      const int channel = MediaChannel + (host_.program - MediaChannel + 1 + random.bounded(2)) % 3;
      post(ShowEventSelectChannel, PVMObject, channel);
      const int before = host_.ends;
      if (take % kLeverEvery == 0)
        takeByLever(random);
      else
        takeByItself(channel, random);
      QVERIFY2(host_.ends == before + 1 && host_.program == channel, qPrintable(QString::number(take)));
      if (take == kSettled)
        settled = holdingsNow();
    }
    const Holdings end = holdingsNow();
    qInfo("%lld ticks for %lld frames", static_cast<long long>(ticks_), static_cast<long long>(frame_));
    qInfo("after %d takes : %s", kSettled, settled.text().constData());
    qInfo("after %d takes : %s", kTakes, end.text().constData());
    QVERIFY2(end.threads <= settled.threads, end.text().constData());
    QVERIFY2(end.descriptors <= settled.descriptors, end.text().constData());
    QVERIFY2(end.allocatedKiB <= settled.allocatedKiB + 64, end.text().constData());
    QVERIFY2(end.residentKiB <= settled.residentKiB + 16 * 1024, end.text().constData());
  }

  void cleanupTestCase() { backend_.end(); }
};

QTEST_MAIN(TakeSoakTest)
#include "tst_take_soak.moc"
