// Which channels sound on which bus, by mode, enabling and the channels on the buses; and the limits of
// volumes.
#include <QtTest>
#include <cmath>

#include "engine/audio/MixerSettings.h"

using namespace korvia;

namespace {

constexpr int kCh0 = MediaChannel;
constexpr int kCh1 = MediaChannel + 1;
constexpr int kCh2 = MediaChannel + 2;

using Gains = QVector<float>;

/// Of the first four channels and the karaoke.
Gains programGains(const MixerSettings& settings, const BusChannels& buses) {
  Gains gains;
  for (const int slot : {0, 1, 2, 3, kKaraokeSlot})
    gains << settings.programGain(slot, buses);
  return gains;
}

}  // namespace

class MixerSettingsTest : public QObject {
  Q_OBJECT

 private slots:
  void autoIsTheChannelOnProgram() {
    MixerSettings settings;
    QCOMPARE(programGains(settings, {kCh1, kCh0}), (Gains{1, 0, 0, 0, 1}));
    QCOMPARE(programGains(settings, {}), (Gains{0, 0, 0, 0, 1}));
    QCOMPARE(programGains(settings, {kCh1, StageChannel}), (Gains{0, 0, 0, 0, 1}));
    // The short ids are those of sources, which are on no bus.
    QCOMPARE(programGains(settings, {kCh1, SourceObject}), (Gains{0, 0, 0, 0, 1}));
    // What is enabled for the manual mode does not matter here.
    QVERIFY(settings.enable(kCh2, true));
    QCOMPARE(programGains(settings, {kCh1, kCh0}), (Gains{1, 0, 0, 0, 1}));
  }

  void aTakeKeepsThePower() {
    const MixerSettings settings;
    for (const double position : {0.0, 0.1, 0.5, 0.77, 0.999}) {
      const Gains gains = programGains(settings, {kCh1, kCh0, kCh1, position});
      QVERIFY(std::abs(gains[0] * gains[0] + gains[1] * gains[1] - 1) < 1e-6);
      QVERIFY(std::abs(gains[1] - std::sin(position * 1.5707963)) < 1e-6);
      QCOMPARE(gains[2], 0.0F);
    }
    // A curve may go beyond both ends.
    QCOMPARE(programGains(settings, {kCh1, kCh0, kCh1, -0.1}), (Gains{1, 0, 0, 0, 1}));
    QVERIFY(programGains(settings, {kCh1, kCh0, kCh1, 1.1})[0] < 1e-6);
    QCOMPARE(programGains(settings, {kCh1, kCh0, kCh0, 0.5}), (Gains{1, 0, 0, 0, 1}));
    // Program was empty before.
    QVERIFY(std::abs(programGains(settings, {kCh1, 0, kCh1, 0.5})[1] - 0.7071F) < 1e-4);
  }

  void allIsEveryMediaChannel() {
    MixerSettings settings;
    QVERIFY(settings.setMode(AudioMixModeAll));
    QCOMPARE(programGains(settings, {kCh1, kCh0}), (Gains{1, 1, 1, 1, 1}));
    QVERIFY(settings.isHeard(7, {}));
  }

  void manualIsWhatIsEnabled() {
    MixerSettings settings;
    QVERIFY(settings.setMode(AudioMixModeManual));
    QCOMPARE(programGains(settings, {kCh1, kCh0}), (Gains{0, 0, 0, 0, 1}));
    QVERIFY(settings.enable(kCh1, true));
    QVERIFY(settings.enable(kCh2, true));
    QCOMPARE(programGains(settings, {kCh1, kCh0, kCh1, 0.5}), (Gains{0, 1, 1, 0, 1}));
    QVERIFY(settings.enable(kCh1, false));
    QCOMPARE(programGains(settings, {kCh1, kCh0}), (Gains{0, 0, 1, 0, 1}));
  }

  void onlyMediaChannelsCanBeEnabled() {
    MixerSettings settings;
    for (const int object : {0, int(KaraokeObject), int(PGMObject), int(StageChannel), 0x18, -1})
      QVERIFY(!settings.enable(object, true));
  }

  void previewIsItsChannelInEveryMode() {
    MixerSettings settings;
    for (const int mode : {0, 1, 2}) {
      QVERIFY(settings.setMode(mode));
      QCOMPARE(settings.previewGain(1, {kCh1, kCh0}), 1.0F);
      QCOMPARE(settings.previewGain(0, {kCh1, kCh0}), 0.0F);
      QCOMPARE(settings.previewGain(kKaraokeSlot, {kCh1, kCh0}), 0.0F);
    }
  }

  void aModeThatDoesNotExistIsRefused() {
    MixerSettings settings;
    QVERIFY(settings.setMode(AudioMixModeManual));
    QVERIFY(!settings.setMode(3));
    QVERIFY(!settings.setMode(-1));
    QCOMPARE(int(settings.mode()), int(AudioMixModeManual));
  }

  void volumesAreLimited() {
    MixerSettings settings;
    for (const int object : {kCh0, kCh2, int(KaraokeObject), int(PVMObject), int(PGMObject)}) {
      QCOMPARE(settings.volume(object), 1.0F);
      QVERIFY(settings.setVolume(object, 0.25F));
      QCOMPARE(settings.volume(object), 0.25F);
      QVERIFY(!settings.setVolume(object, std::nanf("")));
      QCOMPARE(settings.volume(object), 0.25F);
      QVERIFY(settings.setVolume(object, -1));
      QCOMPARE(settings.volume(object), 0.0F);
      QVERIFY(settings.setVolume(object, 1e30F));
      QCOMPARE(settings.volume(object), MixerSettings::kVolumeMax);
    }
    QCOMPARE(settings.volume(kCh1), 1.0F);
    QVERIFY(!settings.setVolume(StageChannel, 0.5F));
    QCOMPARE(settings.volume(StageChannel), 0.0F);
    // Both forms of a channel's id are the same channel.
    QCOMPARE(settings.volume(SourceObject), settings.volume(kCh0));
  }
};

QTEST_GUILESS_MAIN(MixerSettingsTest)
#include "tst_mixer_settings.moc"
