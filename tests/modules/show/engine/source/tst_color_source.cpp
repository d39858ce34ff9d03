// One colour, and the bars with their BT.709 code values.
#include <QtTest>

#include "../audio/ToneCheck.h"
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
    QVERIFY(!frame->hasAlpha());
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
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, 3, 3), (QVector<int>{16, 128, 128}));
    QVERIFY(frame->hasAlpha());
    QCOMPARE(int(frame->plane(Frame::A)[3 * frame->stride(Frame::A) + 7]), 0);
  }

  void halfTransparentColorIsPremultiplied() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.color = 0x80FFFFFF;
    rig.open(info);
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, 3, 3), (QVector<int>{126, 128, 128}));
    QCOMPARE(int(frame->plane(Frame::A)[5 * frame->stride(Frame::A) + 7]), 128);
  }

  void bars_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("hd") << 1920 << 1080;
    QTest::newRow("uneven") << 1280 << 721;
    QTest::newRow("small") << 17 << 5;
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
    QVERIFY(!frame->hasAlpha());
    QCOMPARE(codesAt(frame, width - 1, height - 1), (QVector<int>{16, 128, 128}));
    if (width < 16)
      return;
    const QVector<int> expected[8] = {{235, 128, 128}, {168, 44, 136}, {145, 147, 44}, {133, 63, 52},
                                      {63, 193, 204},  {51, 109, 212}, {28, 212, 120}, {16, 128, 128}};
    for (int i = 0; i < 8; ++i) {
      QCOMPARE(codesAt(frame, width * i / 8 / 2 * 2, height / 2), expected[i]);
      if (i < 7)
        QCOMPARE(codesAt(frame, width * (i + 1) / 8 / 2 * 2 - 1, height / 2), expected[i]);
    }
  }

  void barsAreTheColorsOfBt709() {
    SourceRig rig({64, 36});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.colorBar = 1;
    rig.open(info);
    const FrameRef frame = rig->pullFrame(1);
    const double colors[8][3] = {{1, 1, 1},     {.75, .75, 0}, {0, .75, .75}, {0, .75, 0},
                                 {.75, 0, .75}, {.75, 0, 0},   {0, 0, .75},   {0, 0, 0}};
    for (int i = 0; i < 8; ++i) {
      const auto [r, g, b] = colors[i];
      const double luma = 0.2126 * r + 0.7152 * g + 0.0722 * b;
      const QVector<int> codes{qRound(16 + 219 * luma), qRound(128 + 224 * (b - luma) / 1.8556),
                               qRound(128 + 224 * (r - luma) / 1.5748)};
      QCOMPARE(codesAt(frame, i * 8 + 4, 18), codes);
    }
  }

  void barsHaveATone() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    info.colorBar = 1;
    rig.open(info);
    Sound sound;
    for (int tick = 0; tick < 25; ++tick) {
      rig->pullFrame(1);
      // 30000/1001 ticks a second have 1601 or 1602 samples, which are no whole periods.
      QVERIFY(rig->pullSound(sound.append(601)));
      QVERIFY(rig->pullSound(sound.append(tick % 5 < 3 ? 1001 : 1000)));
    }
    QVERIFY(std::abs(std::abs(toneIn(sound.left, 1000, 0, 24'000)) - std::pow(10, -18 / 20.0)) < 1e-5);
    QVERIFY(roughness(sound.left, 1000) < 1e-6);
    QCOMPARE(sound.left, sound.right);
  }

  void colorIsSilent() {
    SourceRig rig({8, 6});
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    rig.open(info);
    rig->pullFrame(1);
    Sound sound;
    QVERIFY(!rig->pullSound(sound.append(1920)));
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
