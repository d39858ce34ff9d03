// What a film does with reports that come together or late.
#include <QtTest>
#include <thread>

#include "engine/source/FilmPlayer.h"

using namespace korvia;

class FilmPlayerTest : public QObject {
  Q_OBJECT

 private slots:
  // Demultiplexers report an error and then the end of the stream.
  void anEndAfterAFailureIsHarmless() {
    SourceContext context;
    context.renderSize = {64, 36};
    FilmPlayer player(context, "/nowhere/film.mp4", EndActionLoop, 0);
    FilmPipelineListener& pipeline = player;
    pipeline.onFailure("broken");
    pipeline.onEndOfStream();
    pipeline.onDurationChanged();
    player.post(FilmPlayer::Command::Seek, 50);
    player.post(FilmPlayer::Command::Play);
    std::thread control([&player] { player.run(); });
    QTRY_COMPARE(player.state(), Error);
    pipeline.onEndOfStream();
    player.close();
    control.join();
    QCOMPARE(player.state(), NothingSpecial);
  }
};

QTEST_GUILESS_MAIN(FilmPlayerTest)
#include "tst_film_player.moc"
