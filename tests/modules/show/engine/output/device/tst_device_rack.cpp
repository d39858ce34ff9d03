// Program on devices: what a virtual camera, NDI and a card get, and devices that are missing, fail, are slow
// or hang. Elements of the test stand in for the devices.
#include <QtTest>
#include <future>
#include <memory>
#include <thread>

#include "DeviceRig.h"
#include "ThreadSafety.h"
#include "engine/audio/Limiter.h"
#include "engine/output/device/DevicePacedFeed.h"
#include "engine/output/device/DeviceRack.h"
#include "support/AllocationCounter.h"
#include "support/LogLines.h"

using namespace korvia;
using namespace korvia::test;
using namespace std::chrono_literals;

namespace {

constexpr FrameSize kSize{64, 36};
constexpr FrameRate kRate{25, 1};
constexpr int kFrameSamples = kSampleRate / 25;
constexpr DeviceOutput::Times kSoon{20ms, 10'000ms, 2000ms};

DeviceNotes& notes() {
  return DeviceNotes::instance();
}

/// A rack with an open show, and the engine that feeds it.
class Show {
 public:
  explicit Show(DeviceOutput::Times times = kSoon, const QString& camera = "/dev/video7")
      : rack(
            janitor,
            [camera, count = tries] {
              ++*count;
              return camera;
            },
            times) {
    notes().restart();
    param.items[0].ndiName = "Studio";
  }
  ~Show() { rack.close(); }

  void open() { rack.open({kSize, kRate}); }
  void startCamera() { rack.startVirtualCamera(0, param); }
  void startNdi() { rack.startNdi(0, param); }
  void startSdi() { rack.startSdi(0, param); }

  /// Sound and frame of a tick.
  void step() {
    const StereoSpan sound = block_.span(kFrameSamples);
    for (int i = 0; i < kFrameSamples; ++i)
      sound.left[i] = sound.right[i] = levelOf(static_cast<double>(frames * kFrameSamples + i));
    rack.pushSound(sound);
    rack.push(numberedFrame(kSize, frames), 1);
    ++frames;
  }
  /// One frame after the other, as soon as the device has the one before.
  bool stepUntilPictures(int count) {
    const int atFirst = notes().pictureCount();
    for (int i = 0; i < 2000 && notes().pictureCount() < count; ++i) {
      const int before = notes().pictureCount();
      step();
      // Before the device has opened, frames are not for it.
      const bool hasCome = QTest::qWaitFor([before] { return notes().pictureCount() > before; },
                                           before == atFirst ? 10 : 5000);
      if (before > atFirst && !hasCome)
        return false;
    }
    return notes().pictureCount() >= count;
  }
  /// At the pace of the show.
  template <typename Condition>
  bool playUntil(const Condition& condition, int mostFrames = 400) {
    auto due = std::chrono::steady_clock::now();
    for (int i = 0; i < mostFrames; ++i) {
      if (condition())
        return true;
      step();
      due += 40ms;
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(due - std::chrono::steady_clock::now());
      if (left > 0ms)
        QTest::qWait(static_cast<int>(left.count()));
    }
    return condition();
  }
  tagKorviaShowTargetReport report() const {
    const QList<tagKorviaShowTargetReport> reports = rack.reports();
    return reports.isEmpty() ? tagKorviaShowTargetReport() : reports.constFirst();
  }
  KorviaShowTargetState state() const { return report().state; }

  tagKorviaShowOutputParam param;
  /// Of the virtual camera; outlives a device that is left behind.
  const std::shared_ptr<std::atomic<int>> tries = std::make_shared<std::atomic<int>>(0);
  Janitor janitor;
  DeviceRack rack;
  int frames = 0;

 private:
  StereoBlock block_;
};

bool isConsecutive(const QVector<int>& numbers) {
  for (int i = 1; i < numbers.size(); ++i) {
    if (numbers[i] != numbers[i - 1] + 1)
      return false;
  }
  return true;
}

}  // namespace

class DeviceRackTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { installStandIns(); }

  void aVirtualCameraGetsEveryFrameInOrder() {
    const LogLines log;
    Show show;
    show.open();
    show.startCamera();
    QCOMPARE(show.report().name, QString("Virtual Camera"));
    QVERIFY(show.stepUntilPictures(50));
    QVERIFY(isConsecutive(notes().numbers()));
    QCOMPARE(notes().properties(), QStringList("/dev/video7 0"));
    QVERIFY(notes().caps().contains("format=(string)I420, width=(int)64, height=(int)36"));
    QVERIFY(notes().caps().contains("framerate=(fraction)25/1"));
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Up);
    QVERIFY(show.report().reason.isEmpty());
    QCOMPARE(LogLines::count("the virtual camera is up"), 1);
  }

  void ndiGetsEveryFrameWithItsSound() {
    Show show;
    show.open();
    show.startNdi();
    QCOMPARE(show.report().name, QString("NDI"));
    QVERIFY(show.stepUntilPictures(50));
    QCOMPARE(notes().properties(), QStringList("Studio 0"));
    QVERIFY(notes().caps().contains("format=(string)UYVY"));
    QVERIFY(notes().caps().contains("framerate=(fraction)25/1"));
    QVERIFY(isConsecutive(notes().numbers()));
    // The sound goes on from sample to sample.
    const QVector<float> sound = notes().sound();
    QVERIFY(sound.size() > 40 * kFrameSamples);
    const qint64 first = qRound64(sampleOf(sound[0]));
    for (int i = 0; i < sound.size(); ++i)
      QCOMPARE(qRound64(sampleOf(sound[i])), first + i);
    // What is pushed with a frame belongs to a time before, by what the limiter takes.
    const SeenPicture picture = notes().pictures().last();
    const QVector<qint64> times = notes().soundPtsNs();
    const auto place = std::lower_bound(times.begin(), times.end(), picture.ptsNs) - times.begin();
    QVERIFY(place < sound.size());
    QCOMPARE(first + place, qint64(picture.number) * kFrameSamples + Limiter::kLatencySamples);
  }

  void aCardGetsPicturesAndSoundTogether() {
    Show show;
    show.param.items[0].sdiDeviceIndex = 2;
    show.param.items[0].sdiFormat = "720p50";
    show.open();
    show.startSdi();
    QCOMPARE(show.report().name, QString("SDI"));
    QVERIFY(show.playUntil([] { return notes().pictureCount() > 120; }));
    QVERIFY(notes().properties().contains("2 720p50"));
    // The sound goes to the same card.
    QCOMPARE(notes().properties().size(), 2);
    QVERIFY(notes().properties().contains("2"));
    QVERIFY(notes().caps().contains("width=(int)1280, height=(int)720"));
    QVERIFY(notes().caps().contains("framerate=(fraction)50/1"));
    QVERIFY(notes().caps().contains("interlace-mode=(string)progressive"));
    const QVector<float> sound = notes().sound();
    const QVector<qint64> times = notes().soundPtsNs();
    int compared = 0;
    QVector<int> numbers;
    for (const SeenPicture& picture : notes().pictures()) {
      numbers.append(picture.number);
      const auto place = std::lower_bound(times.begin(), times.end(), picture.ptsNs) - times.begin();
      if (place >= sound.size() || sound[place] < levelOf(kFrameSamples))
        continue;
      const double heard = (sampleOf(sound[place]) - Limiter::kLatencySamples) / kFrameSamples;
      // Pictures of the card begin also in the middle of a frame.
      QVERIFY2(std::abs(heard - picture.number) < 1.4,
               qPrintable(QString("picture %1, sound %2").arg(picture.number).arg(heard)));
      ++compared;
    }
    QVERIFY(compared > 50);
    QVERIFY(std::is_sorted(numbers.begin() + DevicePacedFeed::kSilentPictures, numbers.end()));
  }

  void anInterlacedModeCarriesBothFieldsOfAFrame() {
    Show show;
    show.param.items[0].sdiFormat = "pal";
    show.open();
    show.startSdi();
    QVERIFY(show.playUntil([] { return notes().pictureCount() > 3; }));
    QVERIFY(notes().caps().contains("interlace-mode=(string)interleaved"));
    QVERIFY(notes().caps().contains("width=(int)720, height=(int)576"));
    QVERIFY(notes().caps().contains("pixel-aspect-ratio=(fraction)12/11"));
    QVERIFY(notes().caps().contains("colorimetry=(string)bt601"));
  }

  void anUnknownFormatIsToldAndOpensNothing() {
    const LogLines log;
    Show show;
    show.param.items[0].sdiFormat = "1080p26";
    show.open();
    show.startSdi();
    QCOMPARE(show.state(), KorviaShowTargetState::Failed);
    QCOMPARE(show.report().reason, QString("the output format \"1080p26\" is unknown"));
    QCOMPARE(LogLines::count("SDI card 0 does not run : the output format \"1080p26\" is unknown"), 1);
    show.step();
    QCOMPARE(notes().opens(), 0);
    // The right one replaces it.
    show.param.items[0].sdiFormat = "1080p25";
    show.startSdi();
    QVERIFY(show.playUntil([] { return notes().pictureCount() > 2; }));
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Up);
  }

  void aSignalThatCannotBeSetIsToldOf() {
    const LogLines log;
    Show show;
    show.open();
    show.startSdi();
    QCOMPARE(LogLines::count("output signal"), 0);
    show.param.items[0].sdiSignal = "HDMI";
    show.startSdi();
    QCOMPARE(LogLines::count("the output signal \"HDMI\" cannot be set"), 1);
  }

  void aStartWithTheSameSettingsInterruptsNothing() {
    Show show;
    show.open();
    show.startNdi();
    QVERIFY(show.stepUntilPictures(10));
    // Other fields of the record are no settings of this output.
    show.param.items[0].httpEnable = 1;
    show.startNdi();
    QVERIFY(show.stepUntilPictures(20));
    QCOMPARE(notes().opens(), 1);
    QVERIFY(isConsecutive(notes().numbers()));
  }

  void otherSettingsBeginAnewWhenTheOldOneIsClosed() {
    Show show;
    show.open();
    show.startNdi();
    QVERIFY(show.stepUntilPictures(10));
    show.param.items[0].ndiName = "Hall";
    show.startNdi();
    QTRY_COMPARE(notes().opens(), 2);
    QCOMPARE(notes().closes(), 1);
    QCOMPARE(notes().properties().last(), QString("Hall 0"));
    QVERIFY(show.stepUntilPictures(20));
    QCOMPARE(show.rack.reports().size(), 1);
  }

  void aStopEndsTheOutput() {
    Show show;
    show.open();
    show.startNdi();
    show.startCamera();
    QCOMPARE(show.rack.reports().size(), 2);
    QVERIFY(show.stepUntilPictures(10));
    show.rack.stopNdi(0);
    show.rack.stopVirtualCamera(0);
    // Stops come also for what does not run.
    show.rack.stopSdi(0);
    QTRY_COMPARE(notes().closes(), notes().opens());
    QVERIFY(show.rack.reports().isEmpty());
    const int count = notes().pictureCount();
    show.step();
    QCOMPARE(notes().pictureCount(), count);
  }

  void aStartBeforeTheShowWaitsForIt() {
    Show show;
    show.startCamera();
    QVERIFY(show.rack.reports().isEmpty());
    show.open();
    QVERIFY(show.stepUntilPictures(3));
    show.rack.close();
    QTRY_COMPARE(notes().closes(), 1);
    // The console starts it again.
    show.open();
    QVERIFY(show.rack.reports().isEmpty());
  }

  void aMissingPluginIsToldOfOnceAndFoundLater() {
    const LogLines log;
    Show show(kSoon, {});
    removeStandIn("ndisink");
    show.open();
    show.startCamera();
    show.startNdi();
    const auto ndi = [&show] { return show.rack.reports().last(); };
    QTRY_COMPARE(ndi().state, KorviaShowTargetState::Lost);
    QCOMPARE(ndi().reason, QString("the GStreamer plugin ndi is not installed"));
    // The two are tried equally often.
    QTRY_VERIFY(*show.tries > 5);
    QCOMPARE(LogLines::count("the GStreamer plugin ndi is not installed"), 1);
    QCOMPARE(LogLines::count("NDI \"Studio\" is lost"), 1);
    installStandIn("ndisink");
    QVERIFY(show.stepUntilPictures(10));
    QTRY_COMPARE(ndi().state, KorviaShowTargetState::Up);
    QVERIFY(ndi().reason.isEmpty());
    QVERIFY(show.playUntil([] { return LogLines::count("NDI \"Studio\" is up") == 1; }));
  }

  void withoutTheKernelModuleThereIsNoVirtualCamera() {
    const LogLines log;
    Show show(kSoon, {});
    show.open();
    show.startCamera();
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Lost);
    const QString reason("no device, the kernel module v4l2loopback is not loaded");
    QCOMPARE(show.report().reason, reason);
    QTRY_VERIFY(*show.tries > 5);
    QCOMPARE(LogLines::count("the virtual camera is lost : " + reason), 1);
    QCOMPARE(notes().opens(), 0);
  }

  void aDeviceThatDoesNotOpenIsTriedAgain() {
    const LogLines log;
    Show show;
    notes().failOpens(5);
    show.open();
    show.startSdi();
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Lost);
    QCOMPARE(show.report().reason, QString("the card 0 does not open, it has no driver or is in use"));
    QVERIFY(show.playUntil([] { return notes().pictureCount() > 2; }));
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Up);
    QCOMPARE(LogLines::count("SDI card 0 is lost"), 1);
  }

  void aDeviceThatFailsIsTriedAgain() {
    const LogLines log;
    Show show({5000ms, 10'000ms, 2000ms});
    show.open();
    show.startCamera();
    QVERIFY(show.stepUntilPictures(10));
    notes().failRender();
    show.step();
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Lost);
    QCOMPARE(show.report().reason, QString("the cable is out"));
    QVERIFY(show.report().retrySeconds > 0 && show.report().retrySeconds <= 5);
    QCOMPARE(LogLines::count("the virtual camera is lost : the cable is out"), 1);
  }

  void aSlowDeviceLosesItsOwnFrames() {
    const LogLines log;
    Show show;
    show.open();
    show.startCamera();
    QVERIFY(show.stepUntilPictures(3));
    notes().block();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 100; ++i)
      show.step();
    QVERIFY(clock.elapsed() < 2000);
    notes().release();
    const int held = notes().pictureCount();
    // What had waited comes, the rest does not.
    QVERIFY(show.stepUntilPictures(held + 20));
    const QVector<int> numbers = notes().numbers();
    QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
    QVERIFY(numbers.last() - numbers.first() > numbers.size() + 50);
    show.rack.close();
    const auto dropped = numbers.last() - numbers.first() + 1 - numbers.size();
    QTRY_COMPARE(
        LogLines::count(QString("the virtual camera does not keep up, %1 frames dropped").arg(dropped)), 1);
  }

  void aDeviceThatTakesNothingIsClosedAndTriedAgain() {
    const LogLines log;
    Show show({20ms, 200ms, 2000ms});
    show.open();
    show.startCamera();
    QVERIFY(show.stepUntilPictures(3));
    notes().block();
    QVERIFY(show.playUntil([&] { return show.state() == KorviaShowTargetState::Lost; }));
    QCOMPARE(show.report().reason, QString("the device takes no pictures"));
    notes().release();
    QTRY_COMPARE(notes().opens(), 2);
    QVERIFY(show.stepUntilPictures(notes().pictureCount() + 5));
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Up);
    QCOMPARE(LogLines::count("the device takes no pictures"), 1);
  }

  void aCardThatBuffersSoundIsNotTakenForStalled() {
    Show show({20ms, 400ms, 2000ms});
    notes().takeSoundAtOnce();
    show.open();
    show.startSdi();
    QVERIFY(show.playUntil([&] { return show.state() == KorviaShowTargetState::Up; }));
    const int opens = notes().opens();
    const int pictures = notes().pictureCount();
    QVERIFY(show.playUntil([&] { return notes().pictureCount() > pictures + 40; }));
    QCOMPARE(notes().opens(), opens);
    QCOMPARE(show.state(), KorviaShowTargetState::Up);
  }

  void aStopClosesTheDeviceWhileTheJanitorIsBusy() {
    Show show;
    show.open();
    show.startNdi();
    QVERIFY(show.stepUntilPictures(5));
    // A recording that writes its end.
    std::promise<void> written;
    show.janitor.dispose(
        std::shared_ptr<void>(nullptr, [end = written.get_future().share()](void*) { end.wait(); }));
    const int closes = notes().closes();
    show.rack.stopNdi(0);
    QTRY_VERIFY(notes().closes() > closes);
    written.set_value();
  }

  void aHangingDeviceHoldsNobodyUp() {
    const LogLines log;
    QElapsedTimer clock;
    {
      Show show({20ms, 10'000ms, 200ms});
      show.open();
      show.startCamera();
      QVERIFY(show.stepUntilPictures(3));
      notes().block();
      show.step();
      QTRY_VERIFY(notes().isHanging());
      clock.start();
      for (int i = 0; i < 50; ++i)
        show.step();
      show.rack.close();
      QVERIFY(clock.elapsed() < 1000);
    }
    QVERIFY(clock.elapsed() < 3000);
    QCOMPARE(LogLines::count("the virtual camera does not close, it is left behind"), 1);
    notes().release();
    QTRY_COMPARE(notes().closes(), 1);
  }

  void theNextOutputWaitsForADeviceThatHangs() {
    Show show({20ms, 10'000ms, 200ms});
    show.open();
    show.startCamera();
    QVERIFY(show.stepUntilPictures(3));
    notes().block();
    show.step();
    QTRY_VERIFY(notes().isHanging());
    show.rack.stopVirtualCamera(0);
    show.startCamera();
    QTRY_COMPARE(show.state(), KorviaShowTargetState::Lost);
    QCOMPARE(show.report().reason, QString("the device is still being closed"));
    QCOMPARE(notes().opens(), 1);
    notes().release();
    QTRY_COMPARE(notes().opens(), 2);
    QVERIFY(show.stepUntilPictures(notes().pictureCount() + 5));
  }

  void pushingAllocatesNothing() {
    Show show;
    show.open();
    show.startCamera();
    show.startNdi();
    show.startSdi();
    QVERIFY(show.playUntil([] { return notes().pictureCount() > 20; }));
    const FrameRef frame = numberedFrame(kSize, 0);
    StereoBlock block;
    const StereoSpan sound = block.span(kFrameSamples);
    for (int i = 0; i < 50; ++i) {
      const qint64 before = allocationCalls();
      show.rack.pushSound(sound);
      show.rack.push(frame, 2);
      QCOMPARE(allocationCalls() - before, qint64(0));
    }
  }

  void onlyV4l2loopbackIsAVirtualCamera() {
    v4l2_capability capability{};
    const auto setDriver = [&capability](const char* name) {
      qstrncpy(reinterpret_cast<char*>(capability.driver), name, sizeof(capability.driver));
    };
    setDriver("v4l2 loopback");
    capability.capabilities = V4L2_CAP_DEVICE_CAPS | V4L2_CAP_VIDEO_OUTPUT;
    // What the driver has, and not this device of it.
    QVERIFY(!isVirtualCamera(capability));
    capability.device_caps = V4L2_CAP_VIDEO_OUTPUT;
    QVERIFY(isVirtualCamera(capability));
    setDriver("vivid");
    QVERIFY(!isVirtualCamera(capability));
  }
};

QTEST_GUILESS_MAIN(DeviceRackTest)
#include "tst_device_rack.moc"
