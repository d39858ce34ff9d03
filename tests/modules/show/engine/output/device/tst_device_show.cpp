// The software engine stepped by hand, with devices that elements of the test stand in for: events, pictures,
// sound, what the figures tell, and the end.
#include <QtTest>

#include "DeviceRig.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/SoftwareBackend.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;
using namespace korvia::test;

namespace {

DeviceNotes& notes() {
  return DeviceNotes::instance();
}

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 id, const QVariant&, const QVariant&, const QVariant&, const QVariant&) override {
    results << id;
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  QVector<quint64> results;
};

/// Counts the lines of the log about events without a part.
class UntakenEvents {
 public:
  UntakenEvents() {
    lines() = 0;
    old_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
      lines() += text.contains("no part of the engine takes event") ? 1 : 0;
    });
  }
  ~UntakenEvents() { qInstallMessageHandler(old_); }
  static int count() { return lines(); }

 private:
  static std::atomic<int>& lines() {
    static std::atomic<int> all{0};
    return all;
  }
  QtMessageHandler old_ = nullptr;
};

}  // namespace

class DeviceShowTest : public QObject {
  Q_OBJECT

 private:
  Host host_;
  std::unique_ptr<SoftwareBackend> backend_;
  qint64 frame_ = 0;

  void post(quint64 id, const QVariant& a1 = {}, const QVariant& a2 = {}) {
    backend_->handleEvent({id, {a1, a2, {}, {}}});
  }
  void openShow() {
    tagKorviaShowEngineInfo info;
    info.format.width = 64;
    info.format.height = 36;
    post(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
  }
  void step(int missed = 0) {
    frame_ += 1 + missed;
    backend_->frameStep({frame_, missed});
  }
  void startNdi() {
    tagKorviaShowOutputParam param;
    param.items[0].ndiName = "Studio";
    post(ShowEventStartNDI, 0, toVariant(param));
  }
  bool stepUntilPictures(int count) {
    return QTest::qWaitFor(
        [&] {
          if (notes().pictureCount() < count)
            step();
          return notes().pictureCount() >= count;
        },
        20'000);
  }
  QList<tagKorviaShowTargetReport> reports() {
    tagKorviaShowEngineFigures figures;
    backend_->getFigures(figures);
    return figures.deviceOutputs;
  }

 private slots:
  void init() {
    installStandIns();
    notes().restart();
    host_.results.clear();
    frame_ = 0;
    backend_ = std::make_unique<SoftwareBackend>();
    backend_->begin(host_);
    openShow();
  }
  void cleanup() {
    notes().release();
    if (backend_)
      backend_->end();
    backend_.reset();
  }

  void everyStartAndStopReachesItsOutput() {
    const UntakenEvents untaken;
    const QVariant param = toVariant(tagKorviaShowOutputParam());
    host_.results.clear();
    post(ShowEventStartSDI, 0, param);
    post(ShowEventStartVirtualCamera, 0, param);
    post(ShowEventStartNDI, 0, param);
    const auto names = [this] {
      QStringList all;
      for (const tagKorviaShowTargetReport& report : reports())
        all << report.name;
      return all;
    };
    QCOMPARE(names(), (QStringList{"Virtual Camera", "NDI", "SDI"}));
    post(ShowEventStopNDI, 0);
    QCOMPARE(names(), (QStringList{"Virtual Camera", "SDI"}));
    post(ShowEventStopVirtualCamera, 0);
    QCOMPARE(names(), QStringList("SDI"));
    post(ShowEventStopSDI, 0);
    QCOMPARE(names(), QStringList());
    QCOMPARE(UntakenEvents::count(), 0);
    // The console waits for no answer.
    QVERIFY(host_.results.isEmpty());
  }

  void aDeviceGetsTheFramesThatWereMissedToo() {
    startNdi();
    QVERIFY(stepUntilPictures(5));
    QTRY_COMPARE(reports().first().state, KorviaShowTargetState::Up);
    // How much further the sound of what has come goes than its pictures. The limiter keeps a little of it.
    const auto lagMs = [] {
      const QVector<qint64> sound = notes().soundPtsNs();
      const qint64 pictureEndNs = notes().pictures().last().ptsNs + 40'000'000;
      return sound.isEmpty() ? -1000 : (sound.last() - pictureEndNs) / 1'000'000;
    };
    QTRY_VERIFY(qAbs(lagMs()) <= 3);
    const int count = notes().pictureCount();
    step(3);
    QTRY_VERIFY(notes().pictureCount() >= count + 4 && qAbs(lagMs()) <= 3);
    // By their time stamps none is missing.
    const QVector<SeenPicture> pictures = notes().pictures();
    for (int i = 1; i < pictures.size(); ++i)
      QCOMPARE(pictures[i].ptsNs - pictures[i - 1].ptsNs, qint64(40'000'000));
  }

  void theEndOfTheShowEndsTheDevices() {
    startNdi();
    QVERIFY(stepUntilPictures(3));
    post(ShowEventClose);
    QVERIFY(reports().isEmpty());
    QTRY_COMPARE(notes().closes(), 1);
    // The console starts them again when the show is open again.
    openShow();
    QVERIFY(reports().isEmpty());
    startNdi();
    QVERIFY(stepUntilPictures(notes().pictureCount() + 3));
  }

  void aHangingDeviceHoldsUpNeitherTicksNorTheEnd() {
    startNdi();
    QVERIFY(stepUntilPictures(3));
    notes().block();
    step();
    QTRY_VERIFY(notes().isHanging());
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 50; ++i)
      step();
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    backend_->end();
    QVERIFY(clock.elapsed() < 1500);
    backend_.reset();
    QVERIFY2(clock.elapsed() < 6000, qPrintable(QString::number(clock.elapsed())));
    notes().release();
    QTRY_COMPARE(notes().closes(), 1);
  }
};

QTEST_GUILESS_MAIN(DeviceShowTest)
#include "tst_device_show.moc"
