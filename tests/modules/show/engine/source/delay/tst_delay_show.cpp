// Delays among the channels: the sound and the picture of the other channel, in any order of slots; what a
// delay of itself, two in a circle, a closed channel and a wrong channel show.
#include <QtTest>
#include <vector>

#include "../SourceRig.h"
#include "engine/Janitor.h"
#include "engine/audio/StereoBlock.h"
#include "engine/channel/ChannelBank.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kDelayMs = 400;
constexpr int kFrames = 10;
constexpr int kTickSamples = kSampleRate / 25;
constexpr int kWhite = 235;
constexpr int kBlack = 16;

class Bank {
 public:
  Bank() {
    ShowFormat format;
    format.size = {64, 36};
    bank_.open(format);
    // Pulled at least once before the sources come.
    tick();
  }
  ~Bank() { bank_.closeSources(); }

  void openColor(int channel, bool bars = false) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.colorBar = bars ? 1 : 0;
    open(channel, info);
  }
  void openDelay(int channel, int of, int delayMs = kDelayMs) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDelay;
    info.delayChannel = of;
    info.delayTime = delayMs;
    open(channel, info);
  }
  void open(int channel, const tagKorviaShowSourceInfo& info) {
    bank_.openSource(static_cast<KorviaShowObjectID>(channel), info, {}, nullptr);
  }
  void close(int channel) { bank_.closeSource(static_cast<KorviaShowObjectID>(channel)); }

  void tick() {
    bank_.beginTick(1);
    for (int slot = 0; slot < kSourceSlotCount; ++slot) {
      const StereoSpan piece = block_.span(kTickSamples);
      const bool sounds = bank_.pullSound(slot, piece);
      for (int i = 0; i < kTickSamples; ++i)
        sound[slot].push_back(sounds ? piece.left[i] : 0);
    }
  }
  int luma(int channel) { return bank_.stripPicture(channel)->plane(Frame::Y)[0]; }
  ChannelBank* operator->() { return &bank_; }

  std::vector<float> sound[kSourceSlotCount];

 private:
  Janitor janitor_;
  ChannelBank bank_{janitor_};
  StereoBlock block_;
};

}  // namespace

class DelayShowTest : public QObject {
  Q_OBJECT

 private slots:
  void pictureAndSoundComeLater_data() {
    QTest::addColumn<int>("delay");
    QTest::addColumn<int>("of");
    QTest::newRow("before the channel") << int(MediaChannel) << MediaChannel + 5;
    QTest::newRow("behind the channel") << MediaChannel + 7 << MediaChannel + 5;
  }

  void pictureAndSoundComeLater() {
    QFETCH(int, delay);
    QFETCH(int, of);
    Bank bank;
    bank.openDelay(delay, of);
    for (int i = 0; i < 3; ++i)
      bank.tick();
    bank.openColor(of, true);
    for (int i = 0; i < kFrames; ++i) {
      bank.tick();
      QCOMPARE(bank.luma(of), kWhite);
      QCOMPARE(bank.luma(delay), kBlack);
    }
    for (int i = 0; i < 20; ++i) {
      bank.tick();
      QCOMPARE(bank.luma(delay), kWhite);
    }
    const std::vector<float>& first = bank.sound[sourceIndexOf(of)];
    const std::vector<float>& later = bank.sound[sourceIndexOf(delay)];
    constexpr int kShift = kFrames * kTickSamples;
    for (std::size_t i = kShift; i < later.size(); ++i)
      QCOMPARE(later[i], first[i - kShift]);
    QVERIFY(*std::max_element(later.begin(), later.end()) > 0.1F);
  }

  void closedChannelIsPlayedOut() {
    Bank bank;
    bank.openColor(MediaChannel);
    bank.openDelay(MediaChannel + 1, MediaChannel);
    for (int i = 0; i < 20; ++i)
      bank.tick();
    bank.close(MediaChannel);
    for (int i = 0; i < kFrames; ++i) {
      bank.tick();
      QCOMPARE(bank.luma(MediaChannel), kBlack);
      QCOMPARE(bank.luma(MediaChannel + 1), kWhite);
    }
    bank.tick();
    QCOMPARE(bank.luma(MediaChannel + 1), kBlack);
  }

  void delayOfADelay() {
    Bank bank;
    bank.openDelay(MediaChannel, MediaChannel + 1);
    bank.openDelay(MediaChannel + 1, MediaChannel + 2);
    bank.openColor(MediaChannel + 2);
    for (int i = 0; i < 2 * kFrames; ++i)
      bank.tick();
    QCOMPARE(bank.luma(MediaChannel), kBlack);
    bank.tick();
    QCOMPARE(bank.luma(MediaChannel), kWhite);
  }

  void circlesShowWhatTheyHave() {
    Bank bank;
    bank.openDelay(MediaChannel, MediaChannel);
    bank.openDelay(MediaChannel + 1, MediaChannel + 2);
    bank.openDelay(MediaChannel + 2, MediaChannel + 1);
    for (int i = 0; i < 40; ++i)
      bank.tick();
    for (int channel = MediaChannel; channel < MediaChannel + 3; ++channel)
      QCOMPARE(bank.luma(channel), kBlack);
  }

  void wrongChannels_data() {
    QTest::addColumn<int>("channel");
    QTest::newRow("default of the record") << 1;
    QTest::newRow("below the first") << 15;
    QTest::newRow("above the last") << MediaChannel + kMediaChannelMax;
    QTest::newRow("karaoke") << int(KaraokeObject);
    QTest::newRow("program") << int(PGMObject);
    QTest::newRow("negative") << -1;
  }

  void wrongChannels() {
    QFETCH(int, channel);
    WarningKeeper log;
    Bank bank;
    bank.openColor(MediaChannel);
    bank.openDelay(MediaChannel + 3, channel);
    for (int i = 0; i < 20; ++i)
      bank.tick();
    QCOMPARE(bank.luma(MediaChannel + 3), kBlack);
    QCOMPARE(log.lines(), QStringList{QStringLiteral("channel %1 cannot be shown late").arg(channel)});
    QCOMPARE(bank->getSource(static_cast<KorviaShowObjectID>(MediaChannel + 3))->getPlayState(), int(Error));
  }

  // What is shown later on air must be whole, whoever looks at it now.
  void delayedChannelIsNeeded() {
    Bank bank;
    bank->setSaving(true);
    bank.openColor(MediaChannel);
    bank.tick();
    tagKorviaShowEngineFigures alone;
    bank->getFigures(alone);
    QCOMPARE(int(alone.reducedSources), 1);
    bank.openDelay(MediaChannel + 1, MediaChannel);
    bank.tick();
    bank.tick();
    tagKorviaShowEngineFigures figures;
    bank->getFigures(figures);
    // Only the delay itself, which nobody asks for.
    QCOMPARE(int(figures.reducedSources), 1);
  }

  void replacedWhileItRuns() {
    Bank bank;
    bank.openColor(MediaChannel, true);
    for (int round = 0; round < 5; ++round) {
      bank.openDelay(MediaChannel + 1, MediaChannel, kDelayMs + 40 * round);
      for (int i = 0; i < 15 + round; ++i)
        bank.tick();
      QCOMPARE(bank.luma(MediaChannel + 1), kWhite);
    }
    bank.close(MediaChannel + 1);
    bank.tick();
    QCOMPARE(bank.luma(MediaChannel + 1), kBlack);
  }
};

QTEST_GUILESS_MAIN(DelayShowTest)
#include "tst_delay_show.moc"
