// A thousand takes, opens and closes in a row leave nothing behind: no threads, no descriptors, no memory.
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "support/Holdings.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaWindowInfo.h"

namespace {

constexpr int kSteps = 1000;
constexpr int kSettled = 200;
constexpr quint32 kSeed = 20;
constexpr int kStepFrames = 2;

/// Counts finished takes; everything else the engine says is let go.
class CountingSink final : public IKorviaShowThreadSink {
 public:
  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  void onPostEventResult(quint64 eventId, quint64, QVariant a1, QVariant, QVariant, QVariant) override {
    if (eventId == ShowEventOpen)
      opened = true;
    else if (eventId == ShowEventSwitchPosition && a1.toFloat() == 1.0F)
      ++takes;
  }

  std::atomic<bool> opened{false};
  std::atomic<int> takes{0};
};

}  // namespace

class TestShowSoak : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void leavesNothingBehind();

 private:
  void randomStep(QRandomGenerator& random);
  void openRandomSource(int channel, QRandomGenerator& random);
  bool runFrames(int frames);
  bool comeToRest();

  QTemporaryDir folder_;
  CountingSink sink_;
  std::unique_ptr<KorviaShowEngine> engine_;
  int takesPosted_ = 0;
};

void TestShowSoak::initTestCase() {
  QProcess process;
  process.start("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "testsrc=size=160x90:rate=25:duration=1",
                           "-c:v", "libx264", "-pix_fmt", "yuv420p", folder_.filePath("film.mp4")});
  QVERIFY(process.waitForFinished(60000) && process.exitCode() == 0);
  QImage picture(64, 48, QImage::Format_RGB32);
  picture.fill(Qt::darkYellow);
  QVERIFY(picture.save(folder_.filePath("picture.png")));
}

void TestShowSoak::openRandomSource(int channel, QRandomGenerator& random) {
  tagKorviaShowSourceInfo info;
  tagKorviaFormatInfo format;
  switch (random.bounded(3)) {
    case 0:
      info.kind = SourceKindMovie;
      info.moviePath = folder_.filePath("film.mp4");
      break;
    case 1:
      info.kind = SourceKindImage;
      info.imagePath = folder_.filePath("picture.png");
      break;
    default:
      info.kind = SourceKindColor;
      info.color = 0xFF000000U | random.bounded(0x1000000U);
      break;
  }
  engine_->openSource(static_cast<KorviaShowObjectID>(SourceObject + channel), info, format, nullptr);
}

void TestShowSoak::randomStep(QRandomGenerator& random) {
  const int channel = random.bounded(kMediaChannelMax);
  switch (random.bounded(4)) {
    case 0:
      openRandomSource(channel, random);
      break;
    case 1:
      engine_->closeSource(static_cast<KorviaShowObjectID>(SourceObject + channel));
      break;
    case 2:
      engine_->postEvent(ShowEventSelectChannel, random.bounded(2) ? PVMObject : PGMObject,
                         MediaChannel + channel);
      break;
    default:
      engine_->postEvent(ShowEventTake, MediaChannel + channel, random.bounded(80),
                         static_cast<float>(random.bounded(0.1)), random.bounded(29));
      ++takesPosted_;
      break;
  }
}

bool TestShowSoak::runFrames(int frames) {
  tagKorviaShowEngineFigures figures;
  engine_->getFigures(figures);
  const qint64 goal = figures.frames + frames;
  return QTest::qWaitFor(
      [&] {
        engine_->getFigures(figures);
        return figures.frames >= goal;
      },
      10000);
}

bool TestShowSoak::comeToRest() {
  for (int channel = 0; channel < kMediaChannelMax; ++channel)
    engine_->closeSource(static_cast<KorviaShowObjectID>(SourceObject + channel));
  if (!runFrames(50))
    return false;
  // Closed sources end on threads of their own; at rest none has ended for a second and a half.
  int threads = 0;
  QElapsedTimer quiet;
  return QTest::qWaitFor(
      [&] {
        const int now = holdingsNow().threads;
        if (now != threads || !quiet.isValid())
          quiet.start();
        threads = now;
        return quiet.elapsed() > 1500;
      },
      30000);
}

void TestShowSoak::leavesNothingBehind() {
  engine_ = std::make_unique<KorviaShowEngine>();
  engine_->start(&sink_, ShowThreadNormal);
  tagKorviaShowEngineInfo info;
  info.format.width = 320;
  info.format.height = 180;
  info.format.fpsNumerator = 100;
  engine_->postEvent(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
  QTRY_VERIFY(sink_.opened);

  QRandomGenerator random(kSeed);
  Holdings settled;
  for (int step = 1; step <= kSteps; ++step) {
    randomStep(random);
    QVERIFY2(runFrames(kStepFrames), qPrintable(QString::number(step)));
    if (step == kSettled) {
      QVERIFY(comeToRest());
      settled = holdingsNow();
    }
  }
  QVERIFY(comeToRest());
  const Holdings end = holdingsNow();
  qInfo("after %d steps : %s", kSettled, settled.text().constData());
  qInfo("after %d steps : %s", kSteps, end.text().constData());

  // Idle threads of GLib's pool come and go.
  QVERIFY2(end.threads <= settled.threads + 3, end.text().constData());
  QVERIFY2(end.descriptors <= settled.descriptors + 2, end.text().constData());
  QVERIFY2(end.allocatedKiB <= settled.allocatedKiB + 256, end.text().constData());
  QVERIFY2(end.residentKiB <= settled.residentKiB + 48 * 1024, end.text().constData());

  QVERIFY(takesPosted_ > kSteps / 8);
  QVERIFY(sink_.takes > takesPosted_ / 2);
  engine_->postEvent(ShowEventClose);
  engine_->stop();
  engine_.reset();
}

QTEST_MAIN(TestShowSoak)
#include "tst_show_soak.moc"
