// One colour, and the bars with their BT.709 code values.
#include <QtTest>

#include "SourceRig.h"

using namespace korvia;
using namespace korvia::test;

class ColorSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void color() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.color = 0xFFFF0000;
    rig.open(info);
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, 0, 0), (QVector<int>{63, 102, 240}));
    QCOMPARE(codesAt(frame, 7, 5), (QVector<int>{63, 102, 240}));
    QVERIFY(rig->pullFrame(1) == frame);
    QCOMPARE(rig->figures().description, QString("#ffff0000"));
  }

  void transparencyIsOverBlack() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.color = 0x00FFFFFF;
    rig.open(info);
    QCOMPARE(codesAt(rig->pullFrame(1), 3, 3), (QVector<int>{16, 128, 128}));
  }

  void bars_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("hd") << 1920 << 1080;
    QTest::newRow("uneven") << 1280 << 721;
    QTest::newRow("small") << 15 << 5;
    QTest::newRow("tiny") << 2 << 2;
  }

  void bars() {
    QFETCH(int, width);
    QFETCH(int, height);
    SourceRig rig({width, height});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.colorBar = 1;
    rig.open(info);
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, width - 1, height - 1), (QVector<int>{28, 212, 120}));
    if (width < 14)
      return;
    const QVector<int> expected[7] = {{180, 128, 128}, {168, 44, 136}, {145, 147, 44}, {133, 63, 52},
                                      {63, 193, 204},  {51, 109, 212}, {28, 212, 120}};
    for (int i = 0; i < 7; ++i)
      QCOMPARE(codesAt(frame, width * i / 7 / 2 * 2, height / 2), expected[i]);
  }

  void buttonsChangeTheStateAlone() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    rig.open(info);
    QCOMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    rig->pause();
    QCOMPARE(rig->getPlayState(), int(Paused));
    rig->stop();
    QCOMPARE(rig->getPlayState(), int(Stopped));
    rig->play();
    QCOMPARE(rig->getPlayState(), int(Playing));
    rig->setPosition(50);
    QCOMPARE(rig.position(), qint64(0));
    QCOMPARE(rig.durationMs(), qint64(0));
    QCOMPARE(rig->getItemCount(), 1);
    QVERIFY(rig->pullFrame(1) == frame);
    QCOMPARE(*rig->getSourceInfo(), 9);
  }
};

QTEST_GUILESS_MAIN(ColorSourceTest)
#include "tst_color_source.moc"
