// What the statistics window is told of each channel's source.
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "engine/Janitor.h"
#include "engine/channel/ChannelBank.h"

using namespace korvia;

namespace {

using Items = std::array<tagKorviaShowSourceStatisticsItem, kMediaChannelMax>;

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

class Bank {
 public:
  Bank() {
    ShowFormat format;
    format.size = {320, 180};
    bank_.open(format);
  }

  void open(int channel, const tagKorviaShowSourceInfo& info) {
    bank_.openSource(static_cast<KorviaShowObjectID>(channel), info, {}, nullptr);
  }
  void close(int channel) { bank_.closeSource(static_cast<KorviaShowObjectID>(channel)); }
  /// Pulls the pictures of a tick, and asks. `items` is what the console's array held before.
  Items items(Items items = {}) {
    bank_.beginTick(1);
    bank_.getSourceState(items.data());
    return items;
  }

 private:
  Janitor janitor_;
  ChannelBank bank_{janitor_};
};

}  // namespace

class SourceStatisticsTest : public QObject {
  Q_OBJECT

 private slots:
  void sourcesThatNobodyNeedsAreReducedWhileTheMachineIsShort() {
    Janitor janitor;
    ChannelBank bank(janitor);
    ShowFormat format;
    format.size = {64, 36};
    bank.open(format);
    tagKorviaShowSourceInfo color;
    color.kind = SourceKindColor;
    for (int channel = 0; channel < 3; ++channel)
      bank.openSource(static_cast<KorviaShowObjectID>(MediaChannel + channel), color, {}, nullptr);
    const auto reduced = [&bank] {
      bank.beginTick(1);
      tagKorviaShowEngineFigures figures;
      bank.getFigures(figures);
      return figures.reducedSources;
    };
    QCOMPARE(reduced(), 0);
    bank.setSaving(true);
    QCOMPARE(reduced(), 3);
    bank.stripPicture(MediaChannel);
    QCOMPARE(reduced(), 3);
    bank.picture(MediaChannel);
    bank.keep(MediaChannel + 1);
    QCOMPARE(reduced(), 1);
    QCOMPARE(reduced(), 3);
    bank.setSaving(false);
    QCOMPARE(reduced(), 0);
  }

  void closedSourceFadesOut_data() {
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("closed") << false;
    QTest::newRow("replaced") << true;
  }
  void closedSourceFadesOut() {
    QFETCH(bool, isReplaced);
    Janitor janitor;
    ChannelBank bank(janitor);
    ShowFormat format;
    format.size = {64, 36};
    bank.open(format);
    tagKorviaShowSourceInfo bars;
    bars.kind = SourceKindColor;
    bars.colorBar = 1;
    bank.openSource(MediaChannel, bars, {}, nullptr);
    constexpr int kSamples = kSampleRate / 25 + 12;  // 40 1/4 periods of the tone
    std::vector<float> sound;
    const auto tick = [&] {
      std::vector<float> left(kSamples);
      std::vector<float> right(kSamples);
      bank.beginTick(1);
      const bool sounds = bank.pullSound(0, {left.data(), right.data(), kSamples});
      sound.insert(sound.end(), left.begin(), left.end());
      return sounds;
    };
    for (int i = 0; i < 3; ++i)
      QVERIFY(tick());
    QVERIFY(std::abs(sound.back()) > 0.12F);  // a hard end would be a large step
    tagKorviaShowSourceInfo silence;
    silence.kind = SourceKindColor;
    if (isReplaced)
      bank.openSource(MediaChannel, silence, {}, nullptr);
    else
      bank.closeSource(MediaChannel);
    QVERIFY(tick());
    QVERIFY(!tick());
    double step = 0;
    for (std::size_t i = 1; i < sound.size(); ++i)
      step = std::max<double>(step, std::abs(sound[i] - sound[i - 1]));
    const float loudest = *std::max_element(sound.begin(), sound.end());
    QVERIFY(loudest > 0.1F);
    // A tone of 1 kHz moves by 2 pi / 48 of its peak from sample to sample.
    QVERIFY2(step < loudest * 0.14, qPrintable(QString::number(step / static_cast<double>(loudest))));
    QVERIFY(sound[sound.size() - kSamples - 1] == 0);
  }

  void ratesAreThoseOfAMillisecond() {
    SourceFigures figures;
    figures.description = "a source";
    figures.framesPerSecond = 25;
    figures.samplesPerSecond = 48'000;
    figures.videoAudioDriftMs = -12;
    const tagKorviaShowSourceStatisticsItem item = statisticsOf(figures);
    QCOMPARE(item.description, QString("a source"));
    QCOMPARE(item.videoRate, 0.025F);
    QCOMPARE(item.audioRate, 48.0F);
    QCOMPARE(item.videoAudioDrift, qint64(-12));
  }

  void clocksOfTheSourcesAreTold() {
    tagKorviaShowEngineFigures figures;
    SourceFigures camera;
    camera.live.driftPpm = 37.5;
    camera.framesHeld = 2;
    addFigures(kMediaChannelMax - 1, camera, figures);
    addFigures(kKaraokeSlot, camera, figures);
    QCOMPARE(figures.liveSources.back().driftPpm, 37.5);
    QCOMPARE(figures.liveSources.front().driftPpm, 0.0);
    QCOMPARE(figures.heldFilmFrames, qint64(4));
  }

  void eachKindOfSourceDescribesItself() {
    const QTemporaryDir folder;
    QImage image(64, 36, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(folder.filePath("still.png")));
    Bank bank;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindMovie;
    info.moviePath = clip("clip25.mp4");
    bank.open(MediaChannel, info);
    info.kind = SourceKindMovieList;
    info.movieList = QStringList{clip("large.mp4"), clip("second.mkv")};
    bank.open(MediaChannel + 1, info);
    info.kind = SourceKindImage;
    info.imagePath = folder.filePath("still.png");
    bank.open(MediaChannel + 2, info);
    info.kind = SourceKindColor;
    info.color = 0xFF102030;
    bank.open(MediaChannel + 7, info);

    QTRY_COMPARE(bank.items()[0].description, QString("clip25.mp4, 320 x 180"));
    QTRY_VERIFY(bank.items()[0].videoRate > 0);
    QTRY_VERIFY(bank.items()[1].description.startsWith("large.mp4 (1/2)"));
    QTRY_VERIFY(bank.items()[1].videoRate > 0);
    QTRY_COMPARE(bank.items()[2].description, QString("still.png, 64 x 36"));
    QCOMPARE(bank.items()[7].description, QString("#ff102030"));
    QCOMPARE(bank.items()[3].description, QString());
  }

  void aClosedChannelIsEmptied() {
    Bank bank;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindMovie;
    info.moviePath = clip("clip25.mp4");
    bank.open(MediaChannel + 4, info);
    QTRY_VERIFY(bank.items()[4].videoRate > 0);
    bank.close(MediaChannel + 4);
    Items before;
    before[4].videoRate = 1;
    before[4].description = "left over";
    const Items after = bank.items(before);
    QCOMPARE(after[4].description, QString());
    QCOMPARE(after[4].videoRate, 0.0F);
  }
};

QTEST_GUILESS_MAIN(SourceStatisticsTest)
#include "tst_source_statistics.moc"
