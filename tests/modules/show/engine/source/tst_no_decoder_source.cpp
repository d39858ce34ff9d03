// Kinds that nothing can decode: black, Error with the reason, one line.
#include <QtTest>

#include "SourceRig.h"

using namespace korvia;
using namespace korvia::test;

class NoDecoderSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void errorWithTheReason_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("krmp") << int(SourceKindKrmp) << "no decoder for krmp streams";
    QTest::newRow("flash") << int(SourceKindFlash) << "no decoder for flash films";
    QTest::newRow("office") << int(SourceKindOffice) << "no decoder for office documents";
  }

  void errorWithTheReason() {
    QFETCH(int, kind);
    QFETCH(QString, reason);
    WarningKeeper log;
    SourceRig rig;
    tagKorviaShowSourceInfo info;
    info.kind = kind;
    rig.open(info);
    QCOMPARE(log.lines(), QStringList{"source cannot be shown : " + reason});
    QCOMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig->pullFrame(1));
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, reason);
    QCOMPARE(state.rate, 0.0f);
    rig->play();
    rig->stop();
    rig->pause();
    rig->next();
    rig->prev();
    rig->setPosition(50);
    QCOMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig->pullFrame(1));
    QCOMPARE(rig->getItemCount(), 1);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(log.lines().size(), 1);
  }
};

QTEST_GUILESS_MAIN(NoDecoderSourceTest)
#include "tst_no_decoder_source.moc"
