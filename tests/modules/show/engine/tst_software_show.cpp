// The software engine stepped by hand: buses, takes, lever, reports, monitors, snapshots.
#include <QApplication>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/SoftwareBackend.h"
#include "support/MonitorWidget.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;

namespace {

constexpr int kCh0 = MediaChannel;
constexpr int kCh1 = MediaChannel + 1;
constexpr int kCh2 = MediaChannel + 2;

/// Stands for the facade: keeps the results in the order in which they come.
class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant&,
                  const QVariant&) override {
    if (eventId == ShowEventSwitchPosition) {
      positions << a1.toFloat();
      log << (a1.toFloat() == 1.0F ? QString("end") : QString("move"));
    } else if (eventId == ShowEventSelectChannel) {
      log << QString("%1=%2").arg(a1.toULongLong() == PGMObject ? "pgm" : "pvm").arg(a2.toInt(), 0, 16);
    } else {
      log << QString("result %1").arg(eventId);
    }
  }
  void setFrameRate(FrameRate next) override { rate = next; }
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  QStringList log;
  QList<float> positions;
  FrameRate rate;
};

bool isNear(const QColor& got, const QColor& expected) {
  return qAbs(got.red() - expected.red()) <= 4 && qAbs(got.green() - expected.green()) <= 4 &&
         qAbs(got.blue() - expected.blue()) <= 4;
}

}  // namespace

class SoftwareShowTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;
  std::unique_ptr<Host> host_;
  std::unique_ptr<SoftwareBackend> backend_;
  qint64 frame_ = 0;
  int pictures_ = 0;

  void post(quint64 id, const QVariant& a1 = {}, const QVariant& a2 = {}, const QVariant& a3 = {},
            const QVariant& a4 = {}) {
    backend_->handleEvent({id, {a1, a2, a3, a4}});
  }
  void step(int frames = 1) {
    for (int i = 0; i < frames; ++i)
      backend_->frameStep({++frame_, 0});
  }
  void openColor(int channel, QRgb color) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.color = color;
    QVERIFY(
        backend_->openSource(static_cast<KorviaShowObjectID>(channel), info, tagKorviaFormatInfo(), nullptr));
  }
  QImage programImage() {
    const QString path = folder_.filePath(QString("program%1.png").arg(++pictures_));
    post(ShowEventSnapshot, PGMObject, path);
    QImage image;
    const bool written = QTest::qWaitFor([&] { return QFile::exists(path) && image.load(path); }, 10000);
    return written ? image : QImage();
  }
  /// The program picture's colour in the middle.
  QColor program() {
    const QImage image = programImage();
    return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
  }
  void openShow(const tagKorviaShowWindowPackInfo& windows = {}) {
    tagKorviaShowEngineInfo info;
    info.format.width = 320;
    info.format.height = 180;
    post(ShowEventOpen, toVariant(info), toVariant(windows));
  }

 private slots:
  void init() {
    host_ = std::make_unique<Host>();
    backend_ = std::make_unique<SoftwareBackend>();
    backend_->begin(*host_);
    openShow();
    openColor(kCh0, 0xFFFF0000);
    openColor(kCh1, 0xFF0000FF);
    openColor(kCh2, 0xFF00FF00);
    post(ShowEventSelectChannel, PVMObject, kCh1);
    post(ShowEventSelectChannel, PGMObject, kCh0);
    QTRY_VERIFY((step(), isNear(program(), Qt::red)));
    host_->log.clear();
    host_->positions.clear();
  }
  void cleanup() {
    backend_->end();
    backend_.reset();
    host_.reset();
  }

  void openingAnswersAndSetsTheRate() {
    Host host;
    SoftwareBackend backend;
    backend.begin(host);
    tagKorviaShowEngineInfo info;
    info.format.fpsNumerator = 30000;
    info.format.fpsDenominator = 1001;
    backend.handleEvent({ShowEventOpen, {toVariant(info), toVariant(tagKorviaShowWindowPackInfo()), {}, {}}});
    QCOMPARE(host.log, QStringList("result 0"));
    QVERIFY((host.rate == FrameRate{30000, 1001}));
    backend.end();
  }

  void nothingIsShownBeforeTheOpenAndAfterTheEnd() {
    Host host;
    SoftwareBackend backend;
    backend.begin(host);
    backend.frameStep({1, 0});
    backend.handleEvent({ShowEventSnapshot, {PGMObject, folder_.filePath("never.png"), {}, {}}});
    backend.end();
    QVERIFY(!QFile::exists(folder_.filePath("never.png")));
  }

  void aCutIsOnAirWithTheNextFrame() {
    post(ShowEventTake, kCh1, 0, 1.0F, 0);
    step();
    QVERIFY(isNear(program(), Qt::blue));
    QCOMPARE(host_->log, (QStringList{"end", "pgm=11", "pvm=10"}));
  }

  void noDurationCutsToo() {
    post(ShowEventTake, kCh1, 22, 0.0F, 0);
    step();
    QVERIFY(isNear(program(), Qt::blue));
  }

  void aFadeChangesTheFirstFrameAndEndsExactly() {
    post(ShowEventTake, kCh1, 22, 0.4F, 0);
    step();
    const QColor first = program();
    QVERIFY(first.red() < 250 && first.blue() > 5);
    step(4);
    QVERIFY(isNear(program(), QColor(128, 0, 128)));
    step(4);
    QCOMPARE(host_->log.count("end"), 0);
    step();
    QVERIFY(isNear(program(), Qt::blue));
    QCOMPARE(host_->positions.size(), 10);
    QVERIFY(std::is_sorted(host_->positions.begin(), host_->positions.end()));
    QCOMPARE(host_->log.mid(9), (QStringList{"end", "pgm=11", "pvm=10"}));
    step(3);
    QCOMPARE(host_->positions.size(), 10);
  }

  void aChannelFromNoBusLeavesPreviewAlone() {
    post(ShowEventTake, kCh2, 0, 1.0F, 0);
    step();
    QCOMPARE(host_->log, (QStringList{"end", "pgm=12"}));
  }

  void leverForthAndBackFindsTheSamePicture() {
    constexpr int kRandomBars = 16;
    post(ShowEventTake, kCh1, kRandomBars, 0.0F, 0);
    step();
    QVERIFY(isNear(program(), Qt::blue));
    QVector<QImage> pictures;
    for (const float position : {0.5F, 0.9F, 0.2F, 0.5F}) {
      post(ShowEventSwitchPosition, PGMObject, position);
      step();
      pictures << programImage();
    }
    QVERIFY(!pictures[0].isNull());
    QVERIFY(pictures[1] != pictures[0]);
    QVERIFY(pictures[2] != pictures[0]);
    QCOMPARE(pictures[3], pictures[0]);
  }

  void takingTheChannelOnAirOnlyParksTheLever() {
    post(ShowEventTake, kCh0, 22, 1.0F, 0);
    step(3);
    QCOMPARE(host_->log, QStringList("end"));
    QVERIFY(isNear(program(), Qt::red));
  }

  void anotherTakeFinishesTheRunningOneFirst() {
    post(ShowEventTake, kCh1, 22, 1.0F, 0);
    step(5);
    host_->log.clear();
    post(ShowEventTake, kCh2, 22, 0.2F, 0);
    step();
    QCOMPARE(host_->log, (QStringList{"end", "pgm=11", "pvm=10", "move"}));
    step(10);
    QVERIFY(isNear(program(), Qt::green));
  }

  void eventsOfOneFrameWorkInTheirOrder() {
    // Two cuts: the first already swapped the buses.
    post(ShowEventTake, kCh1, 0, 1.0F, 0);
    post(ShowEventTake, kCh2, 0, 1.0F, 0);
    step();
    QCOMPARE(host_->log, (QStringList{"end", "pgm=11", "pvm=10", "end", "pgm=12"}));
    QVERIFY(isNear(program(), Qt::green));
    // What is put on program after a cut stays there.
    host_->log.clear();
    post(ShowEventTake, kCh1, 0, 1.0F, 0);
    post(ShowEventSelectChannel, PGMObject, kCh0);
    step();
    QCOMPARE(host_->log, (QStringList{"end", "pgm=11", "pgm=10"}));
    QVERIFY(isNear(program(), Qt::red));
    // A fade after a cut begins at the channel that was cut to.
    host_->log.clear();
    post(ShowEventTake, kCh1, 0, 1.0F, 0);
    post(ShowEventTake, kCh2, 22, 0.08F, 0);
    step();
    QVERIFY(isNear(program(), QColor(0, 128, 128)));
    QCOMPARE(host_->log, (QStringList{"end", "pgm=11", "move"}));
  }

  void sourcesOfAnotherRenderSizeAreFitted() {
    tagKorviaShowEngineInfo info;
    info.format.width = 640;
    info.format.height = 480;
    post(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
    post(ShowEventTake, kCh1, 22, 0.08F, 0);
    step();
    QVERIFY(isNear(program(), QColor(128, 0, 128)));
    const QString path = folder_.filePath("refitted.png");
    post(ShowEventSnapshot, PGMObject, path);
    QTRY_COMPARE_WITH_TIMEOUT(QImage(path).size(), QSize(640, 480), 10000);
    QVERIFY(isNear(QImage(path).pixelColor(320, 20), Qt::black));
  }

  void anEmptyPreviewIsNotTaken() {
    post(ShowEventSelectChannel, PVMObject, 0);
    host_->log.clear();
    post(ShowEventSwitchPosition, PGMObject, 1.0F);
    step();
    QCOMPARE(host_->log, QStringList("end"));
    QVERIFY(isNear(program(), Qt::red));
  }

  void theLeverMixesByHand() {
    post(ShowEventSwitchPosition, PGMObject, 0.5F);
    step(5);
    QVERIFY(isNear(program(), QColor(128, 0, 128)));
    QCOMPARE(host_->log, QStringList("move"));
    post(ShowEventSwitchPosition, PGMObject, 0.2F);
    post(ShowEventSwitchPosition, PGMObject, 0.3F);
    step();
    QCOMPARE(host_->positions, (QList<float>{0.5F, 0.3F}));  // at most one report a frame
    post(ShowEventSwitchPosition, PGMObject, 1.0F);
    step();
    QVERIFY(isNear(program(), Qt::blue));
    QCOMPARE(host_->log.mid(2), (QStringList{"end", "pgm=11", "pvm=10"}));
  }

  void selectingForProgramEndsATakeAndParksTheLever() {
    post(ShowEventTake, kCh1, 22, 1.0F, 0);
    step(5);
    host_->log.clear();
    host_->positions.clear();
    post(ShowEventSelectChannel, PGMObject, kCh2);
    step();
    QVERIFY(isNear(program(), Qt::green));
    QCOMPARE(host_->log, (QStringList{"pgm=12", "move"}));
    QCOMPARE(host_->positions, QList<float>{0.0F});
  }

  void aClosedSourceLeavesBlack() {
    backend_->closeSource(SourceObject);
    step();
    QVERIFY(isNear(program(), Qt::black));
    QVERIFY(!backend_->getSource(MediaChannel));
  }

  void aPausedProgramKeepsItsPicture() {
    backend_->pausePGMImage(true);
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    step();
    QVERIFY(isNear(program(), Qt::red));
    backend_->pausePGMImage(false);
    step();
    QVERIFY(isNear(program(), Qt::blue));
  }

  void theDrawingLiesOverProgramAlsoWhileItIsFrozen() {
    QImage image(1280, 720, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 300; y < 420; ++y)
      for (int x = 500; x < 780; ++x)
        image.setPixel(x, y, 0xFFFFFFFF);
    backend_->pausePGMImage(true);
    backend_->setPaintPadValid(true);
    backend_->commitPaintPadImage(image);
    QTRY_VERIFY((step(), isNear(program(), Qt::white)));
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    image.fill(Qt::transparent);
    backend_->commitPaintPadImage(image);
    QTRY_VERIFY((step(), isNear(program(), Qt::red)));
    image.fill(qRgba(0, 0, 0, 128));
    backend_->commitPaintPadImage(image);
    backend_->pausePGMImage(false);
    QTRY_VERIFY((step(), isNear(program(), QColor(0, 0, 127))));
    backend_->setPaintPadValid(false);
    step();
    QVERIFY(isNear(program(), Qt::blue));
  }

  void snapshotsHaveTheFullSize() {
    const QString path = folder_.filePath("deep/er/size.png");
    post(ShowEventSnapshot, PGMObject, path);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path), 10000);
    QTRY_COMPARE(QImage(path).size(), QSize(320, 180));
  }

  void missedFramesAreCounted() {
    tagKorviaShowEngineFigures before;
    backend_->getFigures(before);
    backend_->frameStep({frame_ += 4, 3});
    tagKorviaShowEngineFigures after;
    backend_->getFigures(after);
    QCOMPARE(after.frames - before.frames, 4);
    QCOMPARE(after.repeatedFrames - before.repeatedFrames, 3);
    QCOMPARE(after.lateTicks - before.lateTicks, 1);
    // Late within its own frame: nothing is missed, but it is late.
    backend_->frameStep({++frame_, 0, 20'000'000});
    backend_->frameStep({++frame_, 0, 5'000'000});
    backend_->getFigures(after);
    QCOMPARE(after.lateTicks - before.lateTicks, 2);
    QCOMPARE(after.repeatedFrames - before.repeatedFrames, 3);
    QCOMPARE(after.sourceCount, 3);
    QCOMPARE(after.pgmChannel, kCh0);
  }

  void monitorsShowTheirPicturesAndFollowASize() {
    MonitorWidget pgm;
    MonitorWidget strip;
    pgm.resize(160, 90);
    strip.resize(100, 100);
    tagKorviaShowWindowPackInfo windows;
    windows.pgm = windowOf(pgm);
    windows.media[1] = windowOf(strip);
    openShow(windows);
    QTRY_VERIFY((step(), !pgm.last.isNull() && !strip.last.isNull()));
    QCOMPARE(pgm.last.size(), QSize(160, 90));
    QVERIFY(isNear(pgm.last.pixelColor(80, 45), Qt::red));
    QCOMPARE(strip.last.size(), QSize(100, 56));
    QVERIFY(isNear(strip.last.pixelColor(50, 28), Qt::blue));
    pgm.resize(320, 180);
    post(ShowEventResizeWindow, PGMObject, toVariant(windowOf(pgm)));
    QTRY_VERIFY((step(), pgm.last.size() == QSize(320, 180)));
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    QTRY_VERIFY((step(), isNear(pgm.last.pixelColor(160, 90), Qt::blue)));
  }

  void resizeOfUnknownWindowsIsHarmless() {
    MonitorWidget widget;
    for (const int id : {0, 5, 0x18, 0x104, 0x2000, -1})
      post(ShowEventResizeWindow, id, toVariant(windowOf(widget)));
    post(ShowEventResizeWindow, PGMObject, QString("no window"));
    step(2);
  }

  void uselessArgumentsAreHarmless() {
    post(ShowEventTake);
    post(ShowEventTake, "x", "y", "z");
    post(ShowEventTake, kCh1, -7, std::nanf(""), 1000);
    post(ShowEventSwitchPosition, PGMObject, std::nanf(""));
    post(ShowEventSelectChannel, 77, 99);
    post(ShowEventSelectChannel, PGMObject, 0x7FFF);
    post(ShowEventOpen);
    post(ShowEventStartOutput);
    post(ShowEventStopOutput, 99U);
    post(4711);
    step(3);
  }

  void aRenderSizeOutOfRangeBecomesFullHd() {
    Host host;
    SoftwareBackend backend;
    backend.begin(host);
    tagKorviaShowEngineInfo info;
    info.format.width = -3;
    backend.handleEvent({ShowEventOpen, {toVariant(info), toVariant(tagKorviaShowWindowPackInfo()), {}, {}}});
    backend.frameStep({1, 0});
    const QString path = folder_.filePath("fullhd.png");
    backend.handleEvent({ShowEventSnapshot, {PGMObject, path, {}, {}}});
    backend.end();
    QCOMPARE(QImage(path).size(), QSize(1920, 1080));
  }
};

QTEST_MAIN(SoftwareShowTest)
#include "tst_software_show.moc"
