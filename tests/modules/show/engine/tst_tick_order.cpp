// What belongs to a tick is in the pictures of that tick: sources before channels, takes before buses, items
// over the buses, and what comes out of that on monitors and outputs. Missed frames are repeats of the last
// program picture.
#include <QApplication>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/SoftwareBackend.h"
#include "support/AllocationCounter.h"
#include "support/MonitorWidget.h"
#include "support/VideoJudge.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr QSize kSize{320, 180};
constexpr int kCh0 = MediaChannel;
constexpr int kCh1 = MediaChannel + 1;
// Greys that x264 keeps apart.
constexpr QRgb kDark = 0xFF202020;
constexpr QRgb kMiddle = 0xFF808080;
constexpr QRgb kBright = 0xFFE0E0E0;

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64, const QVariant&, const QVariant&, const QVariant&, const QVariant&) override {}
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }
};

class GreyMonitor final : public MonitorWidget {
 public:
  GreyMonitor() { resize(kSize / 2); }
  /// In the middle of the picture; -1 before the first one.
  int grey() const { return last.isNull() ? -1 : qGray(last.pixel(last.rect().center())); }
};

bool isNear(int got, int expected) {
  return qAbs(got - expected) <= 6;
}

}  // namespace

class TickOrderTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;
  Host host_;
  std::unique_ptr<SoftwareBackend> backend_;
  std::unique_ptr<GreyMonitor> pgm_;
  std::unique_ptr<GreyMonitor> pvm_;
  std::unique_ptr<GreyMonitor> strip_;
  qint64 frame_ = 0;
  int files_ = 0;

  void post(quint64 id, const QVariant& a1 = {}, const QVariant& a2 = {}, const QVariant& a3 = {},
            const QVariant& a4 = {}) {
    backend_->handleEvent({id, {a1, a2, a3, a4}});
  }
  void step(int missed = 0) {
    frame_ += 1 + missed;
    backend_->frameStep({frame_, missed});
  }
  void openShow(const tagKorviaShowWindowPackInfo& windows) {
    tagKorviaShowEngineInfo info;
    info.format.width = static_cast<decltype(info.format.width)>(kSize.width());
    info.format.height = static_cast<decltype(info.format.height)>(kSize.height());
    post(ShowEventOpen, toVariant(info), toVariant(windows));
  }
  void openColor(int channel, QRgb color) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.color = color;
    QVERIFY(backend_->openSource(static_cast<KorviaShowObjectID>(channel), info, {}, nullptr));
  }
  /// The grey in the middle of the program picture of the last tick.
  int program() {
    const QString path = folder_.filePath(QString("%1.png").arg(++files_));
    post(ShowEventSnapshot, PGMObject, path);
    QImage image;
    const bool written = QTest::qWaitFor([&] { return QFile::exists(path) && image.load(path); }, 10'000);
    return written ? qGray(image.pixel(image.rect().center())) : -1;
  }
  void commitWhite() {
    QImage image(kSize, QImage::Format_ARGB32);
    image.fill(Qt::white);
    backend_->setPaintPadValid(true);
    backend_->commitPaintPadImage(image);
  }

  void startRecording() {
    tagKorviaShowOutputParam param;
    param.items[OutputSlotRecord].recordPath = folder_.path() + '/';
    param.items[OutputSlotRecord].recordNameFormat = QString("record%1").arg(++files_);
    tagKorviaFormatInfo format;
    format.video.width = kSize.width();
    format.video.height = kSize.height();
    post(ShowEventStartOutput, OutputSlotRecord, toVariant(param), "show", toVariant(format));
  }
  tagKorviaShowOutputReport report() {
    tagKorviaShowEngineFigures figures;
    backend_->getFigures(figures);
    return figures.outputs[OutputSlotRecord];
  }
  /// Ends the recording; the grey in the middle of each of its pictures.
  QVector<int> stopRecording() {
    post(ShowEventStopOutput, OutputSlotRecord, OutputKindRecord);
    if (!QTest::qWaitFor([&] { return report().state == KorviaShowOutputState::Finished; }, 20'000) ||
        report().droppedFrames != 0)
      return {};
    const QByteArray luma = VideoJudge::decodeLuma(report().fileName);
    const int bytes = kSize.width() * kSize.height();
    QVector<int> values;
    for (int at = bytes / 2 + kSize.width() / 2; at < luma.size(); at += bytes)
      values.append(static_cast<uchar>(luma[at]));
    return values;
  }

 private slots:
  void init() {
    frame_ = 0;
    backend_ = std::make_unique<SoftwareBackend>();
    backend_->begin(host_);
    pgm_ = std::make_unique<GreyMonitor>();
    pvm_ = std::make_unique<GreyMonitor>();
    strip_ = std::make_unique<GreyMonitor>();
    tagKorviaShowWindowPackInfo windows;
    windows.pgm = windowOf(*pgm_);
    windows.pvm = windowOf(*pvm_);
    windows.media[0] = windowOf(*strip_);
    openShow(windows);
    openColor(kCh0, kDark);
    openColor(kCh1, kBright);
    post(ShowEventSelectChannel, PVMObject, kCh1);
    post(ShowEventSelectChannel, PGMObject, kCh0);
    step();
    QTRY_VERIFY(isNear(pgm_->grey(), qGray(kDark)) && isNear(pvm_->grey(), qGray(kBright)));
  }
  void cleanup() {
    backend_->end();
    backend_.reset();
  }

  void aNewSourceIsOnAllMonitorsWithItsFirstTick() {
    // The source is pulled before the channel, the bus, the program and the monitors take its picture.
    openColor(kCh0, kMiddle);
    step();
    QVERIFY(isNear(program(), qGray(kMiddle)));
    QTRY_VERIFY(isNear(pgm_->grey(), qGray(kMiddle)));
    QTRY_VERIFY(isNear(strip_->grey(), qGray(kMiddle)));
  }

  void aCutIsOnBothMonitorsWithItsTick() {
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    step();
    QVERIFY(isNear(program(), qGray(kBright)));
    QTRY_VERIFY(isNear(pgm_->grey(), qGray(kBright)));
    // The buses have changed places before the preview was made.
    QTRY_VERIFY(isNear(pvm_->grey(), qGray(kDark)));
  }

  void theMonitorAndTheOutputHaveTheLayersOfTheirTick() {
    startRecording();
    int ticks = 0;
    const auto tick = [&] {
      step();
      ++ticks;
      return program();
    };
    for (int i = 0; i < 3; ++i)
      tick();
    commitWhite();
    QVERIFY(QTest::qWaitFor([&] { return isNear(tick(), 255); }, 10'000));
    // No further tick: the monitor has the layer too.
    QTRY_VERIFY(isNear(pgm_->grey(), 255));
    QVERIFY(isNear(pvm_->grey(), qGray(kBright)));
    // What is hidden is gone with the next tick already.
    backend_->setPaintPadValid(false);
    QVERIFY(isNear(tick(), qGray(kDark)));
    QTRY_VERIFY(isNear(pgm_->grey(), qGray(kDark)));
    const QVector<int> recorded = stopRecording();
    QCOMPARE(recorded.size(), ticks);
    QVERIFY(isNear(recorded.at(ticks - 3), qGray(kDark)));
    QVERIFY(isNear(recorded.at(ticks - 2), 255));
    QVERIFY(isNear(recorded.at(ticks - 1), qGray(kDark)));
  }

  void sourceTakeAndLayerOfOneTickAreInOnePicture() {
    startRecording();
    step();
    // While program is frozen, the drawing is made ready under it.
    QImage image(kSize, QImage::Format_ARGB32);
    image.fill(qRgba(0, 0, 0, 128));
    backend_->setPaintPadValid(true);
    backend_->commitPaintPadImage(image);
    int ticks = 1;
    QVERIFY(QTest::qWaitFor(
        [&] {
          step();
          ++ticks;
          // The monitor drops a picture while the one before is on its way, so it has to have this one.
          return program() < qGray(kDark) - 8 && pgm_->grey() < qGray(kDark) - 8;
        },
        10'000));
    openColor(kCh1, 0xFFFFFFFF);
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    step();
    const QVector<int> recorded = stopRecording();
    QCOMPARE(recorded.size(), ticks + 1);
    // Half of white: the new source, taken, under the layer.
    QVERIFY2(isNear(recorded.last(), 127), QByteArray::number(recorded.last()));
    QVERIFY(isNear(program(), 127));
    QTRY_VERIFY(isNear(pgm_->grey(), 127));
  }

  void missedFramesRepeatTheLastProgramPicture() {
    startRecording();
    step();
    step();
    // The tick comes three frames late and brings a cut: the missed frames show what was on air before.
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    step(3);
    step();
    // The next one brings nothing new.
    step(2);
    QVector<int> expected(5, qGray(kDark));
    expected += QVector<int>(5, qGray(kBright));
    const QVector<int> recorded = stopRecording();
    QCOMPARE(recorded.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
      QVERIFY2(isNear(recorded[i], expected[i]), QString("%1 at %2").arg(recorded[i]).arg(i).toUtf8());
  }

  void missedFramesBeforeTheFirstPictureAreThatPicture() {
    // The show opens anew: its first tick comes late and has nothing to repeat but itself.
    openShow({});
    startRecording();
    step(4);
    const QVector<int> recorded = stopRecording();
    QCOMPARE(recorded.size(), 5);
    for (const int grey : recorded)
      QVERIFY(isNear(grey, qGray(kDark)));
  }

  void aTickAllocatesNothing_data() {
    QTest::addColumn<int>("effect");
    QTest::newRow("no take") << -1;
    QTest::newRow("fade") << 22;
    QTest::newRow("wipe") << 1;
    QTest::newRow("blur") << 57;
    QTest::newRow("distortion") << 69;
  }
  void aTickAllocatesNothing() {
    QFETCH(int, effect);
    // Without monitors, which hold pictures for longer when they are behind, so that the pool grows.
    openShow({});
    if (effect >= 0)
      post(ShowEventTake, kCh1, effect, 4.0F, 0);
    // The first frames of a take fill the scratch and the pools.
    for (int i = 0; i < 5; ++i)
      step();
    for (int i = 0; i < 40; ++i) {
      const qint64 before = allocationCalls();
      step();
      const qint64 after = allocationCalls();
      QCOMPARE(after - before, 0);
    }
  }
};

QTEST_MAIN(TickOrderTest)
#include "tst_tick_order.moc"
