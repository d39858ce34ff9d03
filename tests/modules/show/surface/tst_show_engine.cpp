// The facade: what it keeps itself and what it asks the engine for.
#include <QtTest>

#include "KorviaShowEngine.h"
#include "support/ScriptedBackend.h"

class ShowEngineTest : public QObject {
  Q_OBJECT

 private slots:
  void levelsAreACopyUntilTheyAreAskedForAgain() {
    ScriptedShow show;
    KorviaShowEngine engine;
    show.levels.setPgm({40, 50});
    const tagKorviaShowAudioLevel& levels = engine.getAudioLevel();
    QCOMPARE(levels.pgm().left, 40.0F);
    show.levels.setPgm({60, 70});
    QCOMPARE(levels.pgm().left, 40.0F);
    // The record is the facade's: asking again renews it in its place.
    QCOMPARE(&engine.getAudioLevel(), &levels);
    QCOMPARE(levels.pgm().right, 70.0F);
  }
};

QTEST_GUILESS_MAIN(ShowEngineTest)
#include "tst_show_engine.moc"
