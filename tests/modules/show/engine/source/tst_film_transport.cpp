// Films one after the other: no picture missing or twice at the seams, what cannot be opened is skipped. And
// what a film does with reports that come together or late.
#include <QtTest>
#include <numeric>

#include "SourceRig.h"
#include "engine/source/FilmTransport.h"

using namespace korvia;
using namespace korvia::test;

namespace {

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

using AfterLast = FilmSequence::AfterLast;

class TransportRig {
 public:
  explicit TransportRig(const QStringList& paths, AfterLast afterLast = AfterLast::Nothing)
      : transport_(context(), FilmSequence(paths, afterLast), 7), control_([this] { transport_.run(); }) {}
  ~TransportRig() { close(); }

  void close() {
    transport_.close();
    if (control_.joinable())
      control_.join();
  }

  FilmTransport* operator->() { return &transport_; }
  std::size_t notifies() { return sink_.notifies().size(); }

  /// One tick, once the decoders are ahead or have nothing more to give.
  int tick() {
    const auto give = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (transport_.framesQueued() < 2 && std::chrono::steady_clock::now() < give)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return numberIn(transport_.pull(1));
  }
  std::vector<int> ticks(int count) {
    std::vector<int> shown;
    for (int i = 0; i < count; ++i)
      shown.push_back(tick());
    return shown;
  }
  bool tickUntil(int number) {
    const auto give = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (int last = -1; std::chrono::steady_clock::now() < give;) {
      const int shown = tick();
      if (shown == number)
        return true;
      // What stands still waits for a command to be carried out.
      if (std::exchange(last, shown) == shown)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }
  bool waitFor(KorviaShowPlayState state) {
    return QTest::qWaitFor([&] { return transport_.state() == state; }, 10'000);
  }

 private:
  SourceContext context() {
    SourceContext context;
    context.renderSize = {320, 180};
    context.sink = &sink_;
    return context;
  }

  NotifySink sink_;
  FilmTransport transport_;
  std::thread control_;
};

/// Numbers from `first` on, as many as a clip has, for each of the clips.
std::vector<int> clips(const QVector<int>& firsts) {
  std::vector<int> numbers;
  for (int first : firsts) {
    for (int i = 0; i < 50; ++i)
      numbers.push_back(first + i);
  }
  return numbers;
}

}  // namespace

class FilmTransportTest : public QObject {
  Q_OBJECT

 private slots:
  // Demultiplexers report an error and then the end of the stream.
  void anEndAfterAFailureIsHarmless() {
    SourceContext context;
    context.renderSize = {64, 36};
    const QStringList paths{"/nowhere/film.mp4"};
    FilmTransport transport(context, FilmSequence(paths, AfterLast::First), {});
    transport.onFilmEvent({FilmEvent::Kind::Failure, 1, 0, "broken"});
    transport.onFilmEvent({FilmEvent::Kind::EndOfStream, 1, 0, {}});
    transport.onFilmEvent({FilmEvent::Kind::Facts, 1, 0, {}});
    transport.post(FilmTransport::Command::Seek, 50);
    transport.post(FilmTransport::Command::Play);
    std::thread control([&transport] { transport.run(); });
    QTRY_COMPARE(transport.state(), Error);
    transport.onFilmEvent({FilmEvent::Kind::EndOfStream, 1, 0, {}});
    transport.close();
    control.join();
    QCOMPARE(transport.state(), NothingSpecial);
  }

  void filmsFollowWithoutSeam_data() {
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QVector<int>>("firsts");
    QTest::newRow("two") << QStringList{clip("clip25.mp4"), clip("second.mkv")} << QVector<int>{0, 100};
    QTest::newRow("three") << QStringList{clip("clip25.ts"), clip("second.mkv"), clip("third.mp4")}
                           << QVector<int>{0, 100, 200};
    QTest::newRow("the same between")
        << QStringList{clip("second.mkv"), clip("second.mkv"), clip("clip25.mp4")}
        << QVector<int>{100, 100, 0};
    QTest::newRow("another codec") << QStringList{clip("second.mkv"), clip("mpeg4.avi"), clip("third.mp4")}
                                   << QVector<int>{100, 0, 200};
    QTest::newRow("one of unknown length")
        << QStringList{clip("bare.h264"), clip("second.mkv")} << QVector<int>{0, 100};
  }

  void filmsFollowWithoutSeam() {
    QFETCH(QStringList, paths);
    QFETCH(QVector<int>, firsts);
    TransportRig rig(paths);
    QVERIFY(rig.waitFor(Playing));
    const std::vector<int> expected = clips(firsts);
    QCOMPARE(rig.ticks(static_cast<int>(expected.size())), expected);
    QCOMPARE(rig->framesHeld(), std::int64_t{0});
    QCOMPARE(rig.notifies(), std::size_t{0});
    rig.tick();
    QVERIFY(rig.waitFor(Ended));
    QTRY_COMPARE(rig.notifies(), std::size_t{1});
    QCOMPARE(rig.tick(), expected.back());
  }

  void listLoopsWithoutSeam() {
    TransportRig rig({clip("clip25.mp4"), clip("second.mkv")}, AfterLast::First);
    QVERIFY(rig.waitFor(Playing));
    QCOMPARE(rig.ticks(250), clips({0, 100, 0, 100, 0}));
    QCOMPARE(rig->framesHeld(), std::int64_t{0});
    QCOMPARE(rig->framesShown(), std::int64_t{250});
  }

  void anotherRateHasNoSeam() {
    TransportRig rig({clip("clip24.mkv"), clip("second.mkv"), clip("clip24.mkv")});
    QVERIFY(rig.waitFor(Playing));
    const std::vector<int> slow = rig.ticks(50);
    QCOMPARE(slow.front(), 0);
    QCOMPARE(slow.back(), 47);
    for (std::size_t i = 1; i < slow.size(); ++i)
      QVERIFY(slow[i] - slow[i - 1] == 0 || slow[i] - slow[i - 1] == 1);
    QCOMPARE(rig.ticks(50), clips({100}));
    QCOMPARE(rig.tick(), 0);
  }

  // Pictures that no other one refers to are left out, the others stay at their time, and all come back.
  void reducedRateLeavesOutPictures_data() {
    QTest::addColumn<QString>("path");
    QTest::newRow("H.264 with lengths") << clip("long.mp4");
    QTest::newRow("H.264 with start codes") << clip("long.ts");
    QTest::newRow("HEVC") << clip("long_hevc.mkv");
    QTest::newRow("MPEG-2") << clip("long_mpeg2.mkv");
    QTest::newRow("MPEG-4") << clip("long_mpeg4.mkv");
    QTest::newRow("key frames") << clip("long_mjpeg.mkv");
  }
  void reducedRateLeavesOutPictures() {
    QFETCH(QString, path);
    TransportRig rig({path});
    QVERIFY(rig.waitFor(Playing));
    rig.ticks(10);
    rig->setDecodeRate(DecodeRate::Reduced);
    rig.ticks(15);
    QSet<int> reduced;
    for (int tick = 25; tick < 85; ++tick) {
      const int shown = rig.tick();
      QVERIFY2(shown <= tick && shown > tick - 4, qPrintable(QString("%1 at %2").arg(shown).arg(tick)));
      reduced.insert(shown);
    }
    QVERIFY2(reduced.size() < 45, qPrintable(QString::number(reduced.size())));
    rig->setDecodeRate(DecodeRate::Full);
    rig.ticks(15);
    std::vector<int> expected(30);
    std::iota(expected.begin(), expected.end(), 100);
    QCOMPARE(rig.ticks(30), expected);
    QCOMPARE(rig->framesHeld(), std::int64_t{0});
  }

  void seamIsExactAtTheReducedRate() {
    TransportRig rig({clip("long_hevc.mkv"), clip("second.mkv")});
    QVERIFY(rig.waitFor(Playing));
    rig->setDecodeRate(DecodeRate::Reduced);
    // All pictures of the last five seconds are decoded.
    rig.ticks(150);
    std::vector<int> expected(100);
    std::iota(expected.begin(), expected.end(), 150);
    QCOMPARE(rig.ticks(100), expected);
    QCOMPARE(rig.tick(), 100);
  }

  void fullRateComesBackAfterASeek() {
    TransportRig rig({clip("long.mp4")});
    QVERIFY(rig.waitFor(Playing));
    rig->setDecodeRate(DecodeRate::Reduced);
    rig.ticks(30);
    rig->post(FilmTransport::Command::Seek, 50);
    QVERIFY(rig.tickUntil(250));
    rig->setDecodeRate(DecodeRate::Full);
    rig.ticks(12);
    const int first = rig.tick();
    std::vector<int> expected(50);
    std::iota(expected.begin(), expected.end(), first + 1);
    QCOMPARE(rig.ticks(50), expected);
  }

  void factsAreThoseOfTheFilmOnShow() {
    TransportRig rig({clip("clip25.mp4"), clip("long.mp4")});
    QVERIFY(rig.waitFor(Playing));
    rig.ticks(50);
    QVERIFY(rig->durationNs() < 3'000'000'000);
    rig.ticks(5);
    QTRY_VERIFY(rig->durationNs() > 15'000'000'000);
    QCOMPARE(rig->positionNs(), std::int64_t{4 * 40'000'000});
  }

  void whatCannotBeOpenedIsSkipped_data() {
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << clip("not_there.mp4");
    QTest::newRow("text") << clip("text.mp4");
    QTest::newRow("sound only") << clip("sound_only.m4a");
  }

  void whatCannotBeOpenedIsSkipped() {
    QFETCH(QString, path);
    WarningKeeper log;
    TransportRig rig({clip("clip25.mp4"), path, clip("second.mkv")});
    QVERIFY(rig.waitFor(Playing));
    QCOMPARE(rig.ticks(100), clips({0, 100}));
    QCOMPARE(rig->framesHeld(), std::int64_t{0});
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith("film does not play : " + path));
  }

  void listWithoutAnotherFilmEnds() {
    WarningKeeper log;
    TransportRig rig({clip("clip25.mp4"), clip("not_there.mp4"), clip("text.mp4")});
    QVERIFY(rig.waitFor(Playing));
    QCOMPARE(rig.ticks(50), clips({0}));
    rig.tick();
    QVERIFY(rig.waitFor(Ended));
    QCOMPARE(log.lines().size(), 2);
    rig->post(FilmTransport::Command::Play);
    QVERIFY(rig.waitFor(Playing));
    QVERIFY(rig.tickUntil(30));
  }

  void seekBackFromTheSeamLosesNothing() {
    TransportRig rig({clip("clip25.mp4"), clip("second.mkv")});
    QVERIFY(rig.waitFor(Playing));
    // The next film's pictures lie in the queue already.
    QVERIFY(rig.tickUntil(48));
    rig->post(FilmTransport::Command::Pause);
    QVERIFY(rig.waitFor(Paused));
    rig->post(FilmTransport::Command::Seek, 50);
    QVERIFY(rig.tickUntil(25));
    rig->post(FilmTransport::Command::Play);
    QVERIFY(rig.waitFor(Playing));
    std::vector<int> expected(24 + 50);
    std::iota(expected.begin(), expected.begin() + 24, 26);
    std::iota(expected.begin() + 24, expected.end(), 100);
    QCOMPARE(rig.ticks(74), expected);
  }

  void seekStopAndPauseGoToTheFilmOnShow() {
    TransportRig rig({clip("clip25.mp4"), clip("second.mkv"), clip("third.mp4")});
    QVERIFY(rig.waitFor(Playing));
    QVERIFY(rig.tickUntil(110));
    rig->post(FilmTransport::Command::Seek, 50);
    QVERIFY(rig.tickUntil(126));
    rig->post(FilmTransport::Command::Stop);
    QVERIFY(rig.waitFor(Stopped));
    QVERIFY(rig.tickUntil(100));
    rig->post(FilmTransport::Command::Play);
    QVERIFY(rig.waitFor(Playing));
    QVERIFY(rig.tickUntil(149));
    QCOMPARE(rig.tick(), 200);
  }

  void closeWhileTheNextFilmWaits() {
    for (int number : {0, 20, 49, 100}) {
      TransportRig rig({clip("clip25.mp4"), clip("second.mkv")});
      QVERIFY(rig.waitFor(Playing));
      QVERIFY(rig.tickUntil(number));
      QElapsedTimer timer;
      timer.start();
      rig.close();
      QVERIFY(timer.elapsed() < 5'000);
    }
  }
};

QTEST_GUILESS_MAIN(FilmTransportTest)
#include "tst_film_transport.moc"
