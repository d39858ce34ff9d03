// What is no film costs a line in the log and nothing else.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include "SourceRig.h"

using namespace korvia;
using namespace korvia::test;

namespace {

QString clip(const QString& name) {
  return QStringLiteral(MEDIA_DIR "/") + name;
}

int entries(const char* folder) {
  return QDir(QString::fromLatin1(folder))
      .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
      .size();
}

}  // namespace

class FilmBadInputTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir loop_;

 private slots:
  void initTestCase() { QVERIFY(QFile::link(loop_.filePath("loop.mp4"), loop_.filePath("loop.mp4"))); }

  void errorAndALine_data() {
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << clip("not_there.mp4");
    QTest::newRow("no path") << QString();
    QTest::newRow("folder") << QString(MEDIA_DIR);
    QTest::newRow("zero bytes") << clip("empty.mp4");
    QTest::newRow("text") << clip("text.mp4");
    QTest::newRow("sound only") << clip("sound_only.m4a");
    QTest::newRow("no end of zeros") << QString("/dev/zero");
    QTest::newRow("no end of noise") << QString("/dev/urandom");
    QTest::newRow("no bytes ever") << QString("/dev/null");
    QTest::newRow("link to itself") << loop_.filePath("loop.mp4");
    QTest::newRow("folder of a file") << clip("text.mp4/film.mp4");
    QTest::newRow("reader that would crash") << clip("raw.nut");
    QTest::newRow("sound only, no container") << clip("sound_only.mp3");
  }

  void errorAndALine() {
    QFETCH(QString, path);
    WarningKeeper log;
    SourceRig rig;
    rig.openFilm(path);
    QVERIFY(rig.tickUntil(Error, 15));
    QVERIFY(!rig->pullFrame(1));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith("film does not play : "));
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.rate, 0.0f);
    // The same words as in the log.
    QVERIFY(!state.reason.isEmpty());
    QVERIFY(log.lines().first().endsWith(" : " + state.reason));
    qint64 value = -1;
    rig->getDuration(value);
    QCOMPARE(value, qint64(0));
    // It is closed while the buttons are being obeyed.
    rig->play();
    rig->setPosition(50);
    rig->stop();
    QElapsedTimer timer;
    timer.start();
    rig.close();
    QVERIFY(timer.elapsed() < 100);
    QVERIFY(waitForClosedSources(5'000));
  }

  void truncatedFilmKeepsItsLastPicture() {
    SourceRig rig;
    rig.openFilm(clip("truncated.mp4"), EndActionStop);
    QVERIFY(rig.tickUntil([&] {
      const int state = rig->getPlayState();
      return state == Ended || state == Error;
    }));
    QVERIFY(numberIn(rig->pullFrame(1)) > 0);
  }

  void truncatedFilmLoopsOrHolds() {
    SourceRig rig;
    rig.openFilm(clip("truncated.mp4"), EndActionLoop);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) > 0; }));
    for (int i = 0; i < 100; ++i)
      QVERIFY(rig.tick());
  }

  void aFailedFilmIsOpenedAnewByPlay() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("film.mp4");
    QVERIFY(QFile::copy(clip("text.mp4"), path));
    SourceRig rig;
    rig.openFilm(path, EndActionStop);
    QVERIFY(rig.tickUntil(Error));
    // It fails again as long as the file is what it is.
    rig->play();
    QVERIFY(rig.tickUntil(Error));
    rig->stop();
    QVERIFY(rig.tickUntil(Stopped));
    QVERIFY(QFile::remove(path) && QFile::copy(clip("clip25.mp4"), path));
    rig->play();
    QVERIFY(rig.tickUntil(Playing));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) > 5; }));
  }

  void aStreamThatChangesItsCodecGoesOn() {
    SourceRig rig;
    rig.openFilm(clip("change_of_codec.ts"), EndActionStop);
    QVERIFY(rig.tickUntil([&] { return rig.last() && rig.last()->plane(Frame::Y)[0] > 200; }));
    QVERIFY(rig.tickUntil([&] { return rig.last()->plane(Frame::Y)[0] < 40; }));
    QVERIFY(rig.tickUntil(Ended));
  }

  void fifoThatNeverDelivers() {
    QTemporaryDir folder;
    const QString path = folder.filePath("never.ts");
    QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    QElapsedTimer timer;
    timer.start();
    SourceRig rig;
    rig.openFilm(path);
    QVERIFY(timer.elapsed() < 100);
    for (int i = 0; i < 20; ++i)
      QVERIFY(!rig.tick());
    QCOMPARE(rig->getPlayState(), int(Opening));
    QCOMPARE(rig.linkRate(), 25.0F);
    timer.restart();
    rig.close();
    QVERIFY(timer.elapsed() < 100);
    QVERIFY(waitForClosedSources(5'000));
  }

  void fifoWithAWriterThatStaysSilentTimesOut() {
    QTemporaryDir folder;
    const QString path = folder.filePath("silent.ts");
    QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    const int writer = ::open(qPrintable(path), O_RDWR | O_CLOEXEC);
    QVERIFY(writer >= 0);
    {
      WarningKeeper log;
      SourceRig rig;
      rig.openFilm(path);
      QVERIFY(rig.tickUntil(Error, 15));
      QVERIFY(log.lines().first().contains("no picture within 10 s"));
    }
    ::close(writer);
  }

  void fifoThatFallsSilentHasNoRate() {
    QTemporaryDir folder;
    const QString path = folder.filePath("film.ts");
    QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    // The writer stays open, so the film does not end.
    const int fd = ::open(qPrintable(path), O_RDWR | O_CLOEXEC);
    QVERIFY(fd >= 0);
    {
      SourceRig rig;
      rig.openFilm(path);
      std::thread writer([&] {
        QFile film(clip("clip25.ts"));
        film.open(QIODevice::ReadOnly);
        const QByteArray bytes = film.readAll();
        [[maybe_unused]] const ssize_t written =
            ::write(fd, bytes.constData(), static_cast<size_t>(bytes.size()));
      });
      const bool arrived = rig.tickUntil([&] { return numberIn(rig.last()) > 20 && rig.linkRate() > 0; });
      const bool silent = rig.tickUntil([&] { return rig.linkRate() == 0; });
      const int state = rig->getPlayState();
      writer.join();
      QVERIFY(arrived);
      QVERIFY(silent);
      QCOMPARE(state, int(Playing));
    }
    ::close(fd);
  }

  void fifoThatDeliversPlays() {
    QTemporaryDir folder;
    const QString path = folder.filePath("film.ts");
    QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    SourceRig rig;
    rig.openFilm(path);
    std::thread writer([&] {
      QFile film(clip("clip25.ts"));
      const int fd = ::open(qPrintable(path), O_WRONLY | O_CLOEXEC);
      if (fd < 0 || !film.open(QIODevice::ReadOnly))
        return;
      const QByteArray bytes = film.readAll();
      [[maybe_unused]] const ssize_t written =
          ::write(fd, bytes.constData(), static_cast<size_t>(bytes.size()));
      ::close(fd);
    });
    const bool ended = rig.tickUntil(Ended);
    writer.join();
    QVERIFY(ended);
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
  }

  void unknownKindGivesNoSource() {
    WarningKeeper log;
    tagKorviaShowSourceInfo info;
    info.kind = 77;
    QVERIFY(!createSource({}, info, {}));
    QCOMPARE(log.lines(), QStringList("no source of kind 77"));
  }

  void nothingGrows() {
    const QString paths[] = {clip("clip25.mp4"), clip("text.mp4"), clip("sound_only.m4a"), clip("sound.mp4"),
                             clip("not_there.mp4")};
    WarningKeeper log;
    const auto openAndClose = [&](int i) {
      SourceRig rig;
      rig.openFilm(paths[i % 5]);
      rig.tickUntil([&] { return rig->getPlayState() == Playing || rig->getPlayState() == Error; });
    };
    for (int i = 0; i < 10; ++i)
      openAndClose(i);
    const int threads = entries("/proc/self/task");
    const int descriptors = entries("/proc/self/fd");
    for (int i = 0; i < 50; ++i)
      openAndClose(i);
    // Pools of the libraries may keep a thread or two for a while.
    QTRY_VERIFY_WITH_TIMEOUT(entries("/proc/self/task") <= threads + 2, 20'000);
    QVERIFY2(entries("/proc/self/fd") <= descriptors + 1,
             QByteArray::number(entries("/proc/self/fd") - descriptors));
  }
};

QTEST_GUILESS_MAIN(FilmBadInputTest)
#include "tst_film_bad_input.moc"
