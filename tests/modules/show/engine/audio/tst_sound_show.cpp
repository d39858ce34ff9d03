// The sound of the software engine stepped by hand: events, levels, devices and figures.
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "MixerRig.h"
#include "engine/SoftwareBackend.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kCh0 = MediaChannel;
constexpr int kCh1 = MediaChannel + 1;

/// Keeps the lines of the log about devices, which come from their threads.
class DeviceLines {
 public:
  DeviceLines() {
    all() = 0;
    old_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
      if (text.contains("is silent"))
        all() += text.startsWith("program on the default output") ? 1
                 : text.startsWith("preview on \"Room\"")         ? 100
                                                                  : 10'000;
    });
  }
  ~DeviceLines() { qInstallMessageHandler(old_); }
  /// 1 for each of program, 100 for each of preview, 10000 for each of another device.
  static int count() { return all(); }

 private:
  static std::atomic<int>& all() {
    static std::atomic<int> lines{0};
    return lines;
  }
  QtMessageHandler old_ = nullptr;
};

}  // namespace

class SoundShowTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<MixerHost> host_;
  std::unique_ptr<SoftwareBackend> backend_;
  qint64 frame_ = 0;

  void post(quint64 id, const QVariant& a1 = {}, const QVariant& a2 = {}, const QVariant& a3 = {},
            const QVariant& a4 = {}) {
    backend_->handleEvent({id, {a1, a2, a3, a4}});
  }
  void openShow(const QString& pgmDevice = {}, const QString& pvmDevice = {}) {
    tagKorviaShowEngineInfo info;
    info.format.width = 64;
    info.format.height = 36;
    info.pgmDevice = pgmDevice;
    info.pvmDevice = pvmDevice;
    post(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
    post(ShowEventSelectChannel, PVMObject, kCh1);
    post(ShowEventSelectChannel, PGMObject, kCh0);
  }
  QVector<int> flagsAfterATick() {
    backend_->frameStep({++frame_, 0});
    tagKorviaShowAudioLevel levels;
    backend_->getAudioLevel(levels);
    return {static_cast<int>(levels.active(0)), static_cast<int>(levels.active(1))};
  }

 private slots:
  void init() {
    host_ = std::make_unique<MixerHost>();
    backend_ = std::make_unique<SoftwareBackend>();
    backend_->begin(*host_);
  }
  void cleanup() {
    backend_->end();
    backend_.reset();
    host_.reset();
  }

  void theSoundFollowsCutsTakesAndTheLever() {
    openShow();
    QCOMPARE(flagsAfterATick(), (QVector<int>{1, 0}));
    post(ShowEventTake, kCh1, 0, 0.0F, 0);
    QCOMPARE(flagsAfterATick(), (QVector<int>{0, 1}));
    post(ShowEventTake, kCh0, 22, 1.0F, 0);
    QCOMPARE(flagsAfterATick(), (QVector<int>{1, 1}));
    post(ShowEventSwitchPosition, PGMObject, 1.0F);
    QCOMPARE(flagsAfterATick(), (QVector<int>{1, 0}));
  }

  void aClosedShowIsSilent() {
    openShow();
    QCOMPARE(flagsAfterATick(), (QVector<int>{1, 0}));
    post(ShowEventAudioMixMode, 1);
    QCOMPARE(flagsAfterATick(), (QVector<int>{1, 1}));
    post(ShowEventClose);
    QCOMPARE(flagsAfterATick(), (QVector<int>{0, 0}));
  }

  void theConsoleSetsTheMixer() {
    openShow();
    flagsAfterATick();
    host_->results.clear();
    // As the console posts them: numbers of its own kinds.
    post(ShowEventAudioMixMode, 2);
    post(ShowEventVolume, int(PGMObject), 0.25);
    post(ShowEventChannelMix, kCh1, 1);
    const std::vector<MixerHost::Result> expected{
        {ShowEventAudioMixMode, 2, 0}, {ShowEventVolume, PGMObject, 0.25}, {ShowEventChannelMix, kCh1, 1}};
    QVERIFY(host_->results == expected);
    QCOMPARE(flagsAfterATick(), (QVector<int>{0, 1}));
  }

  void theSoundIsMeasured() {
    openShow();
    for (int i = 0; i < 5; ++i)
      flagsAfterATick();
    tagKorviaShowEngineFigures figures;
    backend_->getFigures(figures);
    QVERIFY(figures.audio.maxMs > 0);
    QVERIFY(figures.loudness == tagKorviaShowEngineFigures::Loudness());
  }

  void anEmptyNameIsTheDefaultOutputOfProgramAlone() {
    const DeviceLines lines;
    openShow();
    QTRY_COMPARE(DeviceLines::count(), 1);
    post(ShowEventClose);
    openShow({}, "Room");
    QTRY_COMPARE(DeviceLines::count(), 102);
    post(ShowEventClose);
    openShow("Hall");
    QTRY_COMPARE(DeviceLines::count(), 10'102);
  }
};

QTEST_GUILESS_MAIN(SoundShowTest)
#include "tst_sound_show.moc"
