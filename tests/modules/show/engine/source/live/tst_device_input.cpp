// A camera and a sound device: how late they are shown, what happens when they vanish, hang, give nothing or
// offer another format.
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QtTest>

#include "CaptureRig.h"
#include "engine/source/SourceFactory.h"
#include "engine/source/live/CapturePipeline.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// Keeps the stamps of the pictures that pass.
class StampKeeper final : public LiveReceiver {
 public:
  explicit StampKeeper(LiveReceiver& receiver) : receiver_(receiver) {}
  void onPicture(FrameRef picture, std::int64_t stampNs, std::int64_t heldNs) override {
    {
      std::lock_guard lock(mutex_);
      stamps_.push_back({picture, stampNs});
    }
    receiver_.onPicture(std::move(picture), stampNs, heldNs);
  }
  void onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) override {
    receiver_.onSound(sound, stampNs, heldNs);
  }
  void onHeldBack() override { receiver_.onHeldBack(); }
  void onStampsRestart() override { receiver_.onStampsRestart(); }
  void onLost(const QString& reason) override { receiver_.onLost(reason); }
  std::int64_t stampOf(const FrameRef& picture) {
    std::lock_guard lock(mutex_);
    for (const auto& [kept, stampNs] : stamps_) {
      if (kept == picture)
        return stampNs;
    }
    return -1;
  }

 private:
  LiveReceiver& receiver_;
  std::mutex mutex_;
  std::vector<std::pair<FrameRef, std::int64_t>> stamps_;  // guarded by mutex_
};

/// How much each second row, from `first` on, differs from the mean of its neighbours.
double rowDifference(const FrameRef& frame, int first) {
  const auto row = [&](int y) {
    return frame->plane(Frame::Y) + std::ptrdiff_t{y} * frame->stride(Frame::Y);
  };
  double sum = 0;
  int count = 0;
  for (int y = first; y + 1 < frame->height(); y += 2) {
    for (int x = 0; x < frame->width(); ++x, ++count)
      sum += std::abs(row(y)[x] - (row(y - 1)[x] + row(y + 1)[x]) / 2);
  }
  return sum / count;
}

/// Device file of the first camera of vivid; empty when there is none.
QString virtualCamera() {
  for (int number = 0; number < 64; ++number) {
    const QString path = QStringLiteral("/dev/video%1").arg(number);
    const int device = ::open(path.toLatin1().constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (device < 0)
      continue;
    v4l2_capability capability{};
    const bool isOne = ::ioctl(device, VIDIOC_QUERYCAP, &capability) == 0 &&
                       qstrcmp(reinterpret_cast<const char*>(capability.driver), "vivid") == 0 &&
                       (capability.device_caps & V4L2_CAP_VIDEO_CAPTURE) != 0;
    ::close(device);
    if (isOne)
      return path;
  }
  return QString();
}

/// An input whose pictures pass through a StampKeeper.
class KeptInput final : public LiveInput {
 public:
  KeptInput(const CaptureSettings& settings, LiveReceiver& receiver, std::shared_ptr<StampKeeper>& keeper)
      : keeper_(std::make_shared<StampKeeper>(receiver)), input_(settings, *keeper_) {
    keeper = keeper_;
  }
  bool start(QString& reason) override { return input_.start(reason); }

 private:
  const std::shared_ptr<StampKeeper> keeper_;
  DeviceInput input_;
};

}  // namespace

class DeviceInputTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QVERIFY(startGStreamer()); }

  void picturesAreAtMostThreeFramesLate() {
    StandIn camera(cameraOf());
    CaptureRig rig(&camera);
    std::shared_ptr<StampKeeper> keeper;
    std::mutex keeperMutex;
    rig.open([&, settings = rig.settings](LiveReceiver& receiver) {
      std::lock_guard lock(keeperMutex);
      return std::make_unique<KeptInput>(settings, receiver, keeper);
    });
    QVERIFY(rig.tickUntil([&] { return rig.fresh > 5; }));
    std::vector<std::int64_t> lateNs;
    while (lateNs.size() < 30) {
      const int before = rig.fresh;
      QVERIFY(rig.tickUntil([&] { return rig.fresh > before; }));
      const std::int64_t nowNs = commonClockNs();
      std::lock_guard lock(keeperMutex);
      lateNs.push_back(nowNs - camera.baseNs() - keeper->stampOf(rig.last));
    }
    // A loaded machine may hold up single pictures.
    std::sort(lateNs.begin(), lateNs.end());
    const std::int64_t usualNs = lateNs[lateNs.size() / 2];
    qInfo("pictures are %.1f ms late, at most %.1f", static_cast<double>(usualNs) * 1e-6,
          static_cast<double>(lateNs.back()) * 1e-6);
    QVERIFY(usualNs > 0);
    QVERIFY2(usualNs <= 120'000'000, qPrintable(QString::number(usualNs)));
    rig.close();
  }

  void returnsWhenItIsPluggedInAgain() {
    WarningKeeper log;
    StandIn camera(cameraOf());
    CaptureRig rig(&camera);
    rig.open();
    QVERIFY(rig.tickUntilState(Playing));
    QVERIFY(rig.tickUntil([&] { return rig.fresh > 2; }));
    camera.unplug();
    QVERIFY(rig.tickUntilState(Error));
    const FrameRef kept = rig.tick();
    QVERIFY(kept);
    QVERIFY(rig.tickUntil([&] { return rig.reason() == "camera is not plugged in"; }));
    const int tries = camera.tries();
    QVERIFY(rig.tickUntil([&] { return camera.tries() >= tries + 3; }));
    QVERIFY(rig.tick() == rig.last);
    camera.setPlugged(true);
    QVERIFY(rig.tickUntilState(Playing));
    const int before = rig.fresh;
    QVERIFY(rig.tickUntil([&] { return rig.fresh > before + 5; }));
    QVERIFY(rig.reason().isEmpty());
    // The tries are not logged.
    QCOMPARE(log.lines(), QStringList{"live source is lost : stand-in : could not read from the device."});
  }

  void missingDeviceIsNotAskedAllTheTime() {
    StandIn camera(cameraOf());
    camera.setPlugged(false);
    CaptureRig rig(&camera);
    rig.open();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    QVERIFY(rig.tickUntil([&] { return std::chrono::steady_clock::now() > end; }));
    QVERIFY2(camera.tries() >= 2 && camera.tries() <= 6, qPrintable(QString::number(camera.tries())));
    QVERIFY(!rig.last);
    QCOMPARE(rig->getPlayState(), int(Error));
  }

  void soundThatFailsLeavesThePictureAlone() {
    WarningKeeper log;
    StandIn camera(cameraOf());
    StandIn sound(microphone());
    sound.setPlugged(false);
    CaptureRig rig(&camera, &sound);
    rig.open();
    QVERIFY(rig.tickUntil([&] { return rig.fresh > 5 && sound.tries() >= 2; }));
    QCOMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig.peak(rig.left), 0.0F);
    QCOMPARE(log.lines(), QStringList{"sound of stand-in is lost : camera is not plugged in"});
    sound.setPlugged(true);
    QVERIFY(rig.tickUntil([&] { return rig.peak(rig.left) > 0.4F; }));
    const int tries = camera.tries();
    sound.unplug();
    QVERIFY(rig.tickUntil([&] { return rig.peak(rig.left) == 0; }));
    const int before = rig.fresh;
    QVERIFY(rig.tickUntil([&] { return rig.fresh > before + 5; }));
    sound.setPlugged(true);
    QVERIFY(rig.tickUntil([&] { return rig.peak(rig.left) > 0.4F; }));
    QCOMPARE(camera.tries(), tries);
  }

  void sidesOfTheSound() {
    StandIn camera(cameraOf());
    StandIn sound(microphone());
    CaptureRig rig(&camera, &sound);
    rig.settings.sides = SoundSides::Swapped;
    rig.open();
    QVERIFY(rig.tickUntil([&] { return rig.peak(rig.right) > 0.4F; }));
    QVERIFY(rig.peak(rig.left) < 0.01F);
  }

  void soundWithoutACamera() {
    StandIn sound(microphone());
    CaptureRig rig(nullptr, &sound);
    rig.open();
    QVERIFY(rig.tickUntil([&] { return rig.peak(rig.left) > 0.4F; }));
    QCOMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(rig.peak(rig.right) < 0.01F);
  }

  void anotherSizeIsSaid() {
    WarningKeeper log;
    StandIn camera(cameraOf(160, 90));
    CaptureRig rig(&camera);
    rig.open();
    QVERIFY(rig.tickUntil([&] { return rig.fresh > 2; }));
    QVERIFY(rig.last->size() == kCaptureSize);
    QCOMPARE(log.lines(),
             QStringList{"stand-in does not offer 320 x 180 at 25.00, it delivers 160 x 90 at 25.00"});
  }

  void jpegIsDecoded() {
    StandIn camera(cameraOf(320, 180, "! jpegenc ! image/jpeg,width=320,height=180,framerate=25/1"));
    CaptureRig rig(&camera);
    rig.open();
    QVERIFY2(rig.tickUntil([&] { return rig.fresh > 2; }), qPrintable(rig.reason()));
    QVERIFY(rig.last->size() == kCaptureSize);
  }

  void interlacedPictures_data() {
    QTest::addColumn<bool>("whole");
    QTest::newRow("deinterlaced") << false;
    QTest::newRow("as they are") << true;
  }

  // Noise moves everywhere, so that a deinterlaced picture has one field, and rows between that are like
  // their neighbours.
  void interlacedPictures() {
    QFETCH(bool, whole);
    StandIn camera(
        "videotestsrc is-live=true pattern=snow ! "
        "video/x-raw,format=I420,width=320,height=180,framerate=25/1,interlace-mode=progressive ! "
        "capssetter caps=video/x-raw,interlace-mode=interleaved ! identity");
    CaptureRig rig(&camera);
    rig.settings.interlaced = whole ? Interlaced::AsItComes : Interlaced::MakeProgressive;
    rig.open();
    QVERIFY2(rig.tickUntil([&] { return rig.fresh > 3; }), qPrintable(rig.reason()));
    const double difference = std::min(rowDifference(rig.last, 1), rowDifference(rig.last, 2));
    QVERIFY2(whole ? difference > 55 : difference < 40, qPrintable(QString::number(difference)));
  }

  void cameraWithoutPicturesIsOpenedAgain() {
    StandIn camera(cameraOf());
    camera.setSilent(true);
    CaptureRig rig(&camera);
    rig.live.openingNs = 300'000'000;
    rig.open();
    QVERIFY(rig.tickUntil([&] { return camera.tries() >= 2; }));
    QVERIFY(!rig.last);
    camera.setSilent(false);
    QVERIFY(rig.tickUntilState(Playing));
  }

  void cameraThatHangsIsLeftBehind() {
    StandIn camera(cameraOf());
    {
      CaptureRig rig(&camera);
      rig.open();
      QVERIFY(rig.tickUntilState(Playing));
      camera.hang();
      QVERIFY(rig.tickUntil([&] { return camera.isHanging(); }));
      const auto begin = std::chrono::steady_clock::now();
      rig.close();
      QVERIFY(std::chrono::steady_clock::now() - begin < std::chrono::seconds(2));
      camera.release();
    }
    QVERIFY(!camera.isHanging());
  }

  void recordOfAMissingCamera() {
    WarningKeeper log;
    SourceRig rig(kCaptureSize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDevice;
    info.videoDevName = QStringLiteral("Camera of nobody");
    info.videoDevId = QStringLiteral("v4l2:by-id/camera-of-nobody");
    rig.open(info);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QCOMPARE(rig.failureReason(), QString("camera is not plugged in"));
    QCOMPARE(log.lines(), QStringList{"live source is lost : Camera of nobody : camera is not plugged in"});
    QVERIFY(!rig->pullFrame(1));
  }

  void recordWithoutDevices() {
    WarningKeeper log;
    SourceRig rig(kCaptureSize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDevice;
    rig.open(info);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QCOMPARE(rig.failureReason(), QString("no device is chosen"));
  }

  void cameraOfTheKernel() {
    const QString device = virtualCamera();
    if (device.isEmpty())
      QSKIP("no camera of the kernel module vivid that may be opened; load it with: modprobe vivid");
    SourceRig rig(kCaptureSize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDevice;
    info.videoDevName = QStringLiteral("vivid");
    info.videoDevId = QStringLiteral("v4l2:") + device;
    info.videoDevConnType = QStringLiteral("HDMI");
    rig.open(info);
    QVERIFY2(rig.tickUntil([&] { return bool(rig.last()); }), qPrintable(rig.failureReason()));
    QVERIFY(rig.last()->size() == kCaptureSize);
  }

  void formatOfTheRecord() {
    SourceContext context;
    context.renderSize = kCaptureSize;
    tagKorviaShowSourceInfo info;
    info.audioProcessFilter = 2;
    tagKorviaFormatInfo format;
    format.video.width = 1280;
    format.video.height = 720;
    format.video.fpsNumerator = 30000;
    format.video.fpsDenominator = 1001;
    format.video.secondEnable = 0;
    format.audio.sampleRate = 44'100;
    const CaptureSettings settings = deviceSettings(context, info, format);
    QVERIFY((settings.wanted == CaptureFormat{{1280, 720}, {30000, 1001}}));
    QVERIFY(settings.interlaced == Interlaced::AsItComes);
    QCOMPARE(settings.sampleRate, 44'100);
    QVERIFY(settings.sides == SoundSides::RightOnBoth);
    format.video.width = 0;
    format.video.fpsDenominator = 0;
    QVERIFY((deviceSettings(context, info, format).wanted == CaptureFormat{kCaptureSize, {25, 1}}));
  }
};

QTEST_GUILESS_MAIN(DeviceInputTest)
#include "tst_device_input.moc"
