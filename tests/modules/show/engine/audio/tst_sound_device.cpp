// A bus on a device: what the device gets, devices that are missing, fail or hang, and the devices of this
// machine, which has no sound server.
#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <QtTest>
#include <atomic>
#include <semaphore>
#include <thread>

#include "MixerRig.h"
#include "engine/audio/DevicePlayer.h"
#include "engine/audio/DeviceSink.h"
#include "engine/audio/SoundDevice.h"
#include "engine/source/GstInit.h"
#include "support/AllocationCounter.h"
#include "support/Holdings.h"
#include "support/LogLines.h"

using namespace korvia;
using namespace korvia::test;
using namespace std::chrono_literals;

namespace {

constexpr FrameRate kRate{25, 1};
constexpr int kBlock = kSampleRate / 25;
constexpr SoundDevice::Times kSoon{20ms, 2000ms};

/// What a made-up device plays. Outlives it, since a device may be left behind.
struct Heard {
  std::atomic<qint64> samples{0};
  std::atomic<qint64> silentSamples{0};  ///< before the first that is not silent
  std::atomic<float> left{0};
  std::atomic<float> right{0};
};

void onSamples(GstElement*, GstBuffer* buffer, GstPad*, gpointer self) {
  auto* heard = static_cast<Heard*>(self);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_READ);
  const auto* pairs = reinterpret_cast<const float*>(map.data);
  const auto count = static_cast<qint64>(map.size / (2 * sizeof(float)));
  for (qint64 i = 0; i < count && heard->silentSamples == heard->samples + i; ++i)
    heard->silentSamples += pairs[2 * i] == 0 ? 1 : 0;
  heard->left = pairs[2 * count - 2];
  heard->right = pairs[2 * count - 1];
  heard->samples += count;
  gst_buffer_unmap(buffer, &map);
}

/// A sink that takes a pull every 10 ms, like a device, with the properties of `identity`.
GstElement* makeSink(const char* properties, Heard* heard) {
  startGStreamer();
  const QByteArray text = QByteArray("identity sleep-time=10000 ") + properties +
                          " ! audio/x-raw,format=F32LE ! fakesink sync=false signal-handoffs=true name=heard";
  GstElement* bin = gst_parse_bin_from_description(text, TRUE, nullptr);
  GstElement* sink = gst_bin_get_by_name(GST_BIN(bin), "heard");
  g_signal_connect(sink, "handoff", G_CALLBACK(onSamples), heard);
  gst_object_unref(sink);
  return GST_ELEMENT(gst_object_ref_sink(bin));
}

}  // namespace

class SoundDeviceTest : public QObject {
  Q_OBJECT

 private:
  StereoBlock block_;

  StereoSpan constantBlock(float left, float right) {
    const StereoSpan span = block_.span(kBlock);
    std::fill_n(span.left, kBlock, left);
    std::fill_n(span.right, kBlock, right);
    return span;
  }
  /// Pushes in real time until the condition holds.
  template <typename Condition>
  bool playUntil(SoundDevice& device, const Condition& condition) {
    const StereoSpan block = constantBlock(0.5F, -0.25F);
    for (int i = 0; i < 250; ++i) {
      if (condition())
        return true;
      device.push(block);
      QTest::qWait(40);
    }
    return false;
  }

 private slots:
  void initTestCase() { startGStreamer(); }

  void theDevicePlaysTheBus() {
    Heard heard;
    SoundDevice device("program", kRate, [&heard] { return makeSink("", &heard); });
    // The device runs also before there is sound.
    QTRY_VERIFY(heard.samples > 0);
    QCOMPARE(heard.left, 0.0F);
    QVERIFY(playUntil(device, [&] { return heard.left > 0.49F; }));
    QVERIFY(std::abs(heard.left - 0.5F) < 0.01F);
    QVERIFY(std::abs(heard.right + 0.25F) < 0.01F);
    QVERIFY(device.isPlaying());
    // Without more sound it falls silent by itself.
    QTRY_COMPARE(heard.left, 0.0F);
    QCOMPARE(device.figures().underruns, qint64(1));
  }

  void theDelayIsEnoughForAShowAndADeviceThatJitter() {
    for (const double ppm : {100.0, -100.0}) {
      DriftCorrector sound(SoundDevice::delaySamples(kRate));
      StereoBlock pulled;
      const StereoSpan block = constantBlock(0.5F, 0.5F);
      const double pullNs = 1e9 * DevicePlayer::kPullSamples / (kSampleRate * (1 + ppm * 1e-6));
      constexpr double kPushNs = 40e6;
      const Signal jitter = noise(1);
      double pushAt = 0;
      double pullAt = 0;
      double mostError = 0;
      for (qint64 n = 0, pulls = 0; n < 60 * 25; ++n) {
        // Both come up to 8 ms late.
        pushAt = static_cast<double>(n) * kPushNs + 8e6 * std::abs(jitter(n));
        for (; pullAt < pushAt;
             ++pulls, pullAt = static_cast<double>(pulls) * pullNs + 8e6 * std::abs(jitter(pulls)))
          sound.pull(pulled.span(DevicePlayer::kPullSamples), static_cast<qint64>(pullAt));
        sound.push(block, static_cast<qint64>(pushAt));
        mostError = std::max(mostError, std::abs(sound.figures().errorSamples));
      }
      QCOMPARE(sound.figures().underruns, qint64(0));
      QCOMPARE(sound.figures().overruns, qint64(0));
      QVERIFY2(mostError < kBlock, qPrintable(QString::number(mostError)));
    }
  }

  void theRushAtTheStartOfADeviceGetsSilence() {
    const auto nowNs = [] { return std::chrono::steady_clock::now().time_since_epoch() / 1ns; };
    DriftCorrector sound(SoundDevice::delaySamples(kRate));
    const StereoSpan block = constantBlock(0.5F, 0.5F);
    // There is sound enough already.
    for (qint64 n = -5; n <= 0; ++n)
      sound.push(block, nowNs() + n * 40'000'000);
    Heard heard;
    DevicePlayer player(sound, [] {});
    QVERIFY(player.start(makeSink("", &heard)));
    for (int i = 0; i < 100 && heard.silentSamples == heard.samples; ++i) {
      QTest::qWait(40);
      sound.push(block, nowNs());
    }
    QVERIFY(heard.silentSamples >= qint64{DevicePlayer::kSilentPulls} * DevicePlayer::kPullSamples);
    QVERIFY(heard.samples > heard.silentSamples);
  }

  void theDelayFollowsTheFrameRate() {
    QVERIFY(SoundDevice::delaySamples({25, 1}) < kSampleRate / 10);
    QVERIFY(SoundDevice::delaySamples({60, 1}) < SoundDevice::delaySamples({25, 1}));
    QCOMPARE(SoundDevice::delaySamples({1, 1}), kSampleRate);
    QCOMPARE(SoundDevice::delaySamples({1, 2'000'000}), kSampleRate);
  }

  void aMissingDeviceIsTriedAgainAndToldOfOnce() {
    const LogLines log;
    Heard heard;
    std::atomic<int> tries{0};
    const auto make = [&]() -> GstElement* { return ++tries <= 5 ? nullptr : makeSink("", &heard); };
    SoundDevice device("preview on \"Room\"", kRate, make, kSoon);
    QVERIFY(playUntil(device, [&] { return heard.left > 0.49F; }));
    QCOMPARE(LogLines::count("preview on \"Room\" is silent : no such sound device"), 1);
    QCOMPARE(tries, 6);
    QTRY_COMPARE(LogLines::count("preview on \"Room\" is heard again"), 1);
  }

  void aDeviceThatFailsIsTriedAgain() {
    const LogLines log;
    Heard heard;
    std::atomic<int> tries{0};
    const auto make = [&] { return makeSink(++tries <= 3 ? "error-after=8" : "", &heard); };
    SoundDevice device("program", kRate, make, kSoon);
    QVERIFY(playUntil(device, [&] { return tries == 4 && heard.left > 0.49F; }));
    // A device that comes and goes is told of each time that it has played.
    QVERIFY(LogLines::count("program is silent : ") >= 1);
    QVERIFY(LogLines::count("program is silent : ") <= 3);
  }

  void aHangingDeviceHoldsNobodyUp() {
    const LogLines log;
    // Released when the device is gone, and alive for the thread that is left behind.
    static std::binary_semaphore gate{0};
    static std::atomic<bool> left{false};
    const auto make = []() -> GstElement* {
      gate.acquire();
      left = true;
      return nullptr;
    };
    auto device = std::make_unique<SoundDevice>("program", kRate, make, SoundDevice::Times{20ms, 200ms});
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 200; ++i)
      device->push(constantBlock(0.5F, 0.5F));
    QVERIFY(clock.elapsed() < 500);
    device.reset();
    QVERIFY(clock.elapsed() < 1500);
    QCOMPARE(LogLines::count("program does not close, it is left behind"), 1);
    gate.release();
    QTRY_VERIFY(left);
  }

  void pushingAllocatesNothing() {
    SoundDevice device("program", kRate, []() -> GstElement* { return nullptr; });
    const StereoSpan block = constantBlock(0.5F, 0.5F);
    for (int i = 0; i < 100; ++i) {
      const qint64 before = allocationCalls();
      device.push(block);
      QCOMPARE(allocationCalls() - before, qint64(0));
    }
  }

  void withoutASoundServerThereIsNoDevice() {
    const auto ask = [] {
      QVERIFY(!makeDefaultDeviceSink());
      QVERIFY(!makeNamedDeviceSink("no such device"));
    };
    ask();
    const int descriptors = holdingsNow().descriptors;
    for (int i = 0; i < 5; ++i)
      ask();
    // Tried again every few seconds, a leak would end the program after some hours.
    QTRY_COMPARE(holdingsNow().descriptors, descriptors);
  }
};

QTEST_GUILESS_MAIN(SoundDeviceTest)
#include "tst_sound_device.moc"
