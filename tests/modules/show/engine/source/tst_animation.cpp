// Animated GIF and WebP files as a source: delays, passes, buttons, and files that are damaged.
#include <QTemporaryDir>
#include <QtTest>

#include "SourceRig.h"
#include "support/GifBytes.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kWhite = 235;
constexpr int kBlack = 16;
constexpr int kRed = 63;

/// A rig whose ticks wait until the next picture is decoded, so that none is late.
class AnimationRig : public SourceRig {
 public:
  AnimationRig() : SourceRig({64, 36}) {}

  void open(const QString& path) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindImage;
    info.imagePath = path;
    SourceRig::open(info);
  }
  /// Whether the animation has begun.
  bool isPlaying() {
    return QTest::qWaitFor([this] { return (*this)->figures().framesDecoded >= 2; }, 10'000) &&
           (*this)->getPlayState() == Playing;
  }

  /// The luma after one tick; `last` when no picture follows the one on show.
  int luma(bool last = false) {
    const auto isAhead = [this] {
      qint64 shown = 0;
      (*this)->getFrameCount(shown);
      return (*this)->figures().framesDecoded > shown;
    };
    if (!last && !QTest::qWaitFor(isAhead, 10'000))
      return -2;
    const FrameRef frame = (*this)->pullFrame(1);
    return frame ? codesAt(frame, 32, 18)[0] : -1;
  }
  QVector<int> lumas(int ticks) {
    QVector<int> result;
    for (int i = 0; i < ticks; ++i)
      result += luma();
    return result;
  }
};

QVector<int> times(int count, int luma) {
  return QVector<int>(count, luma);
}

}  // namespace

class AnimationTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString write(const QByteArray& bytes, const QString& name) { return writeTestFile(folder_, name, bytes); }

  QString gif(const QVector<GifPicture>& pictures, int repeats = 0) {
    return write(gifBytes(pictures, {16, 9}, repeats), "made.gif");
  }

 private slots:
  void delaysAreHonoured() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 20}, {GifPicture::Black, 8}, {GifPicture::Red, 40}}));
    QVERIFY(rig.isPlaying());
    // At 25 frames a second; 0 means for ever.
    const QVector<int> pass = times(5, kWhite) + times(2, kBlack) + times(10, kRed);
    const QVector<int> lumas = rig.lumas(51);
    QVERIFY2(lumas == pass + pass + pass, text(lumas));
    QCOMPARE(rig.durationMs(), qint64(680));
    QCOMPARE(rig.timeMs(), qint64(280));
    QCOMPARE(rig.position(), qint64(41));
    QCOMPARE(rig->figures().framesHeld, qint64(0));
    QCOMPARE(rig->figures().description, QString("made.gif, 16 x 9"));
  }

  void delaysOf0And10MsAre100Ms() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 0}, {GifPicture::Black, 1}}));
    QVERIFY(rig.isPlaying());
    // 100 ms are two and a half frames.
    const QVector<int> pass = times(3, kWhite) + times(2, kBlack);
    QCOMPARE(rig.lumas(20), pass + pass + pass + pass);
    QCOMPARE(rig.durationMs(), qint64(200));
  }

  void shortDelaysSkipPictures() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 2}, {GifPicture::Black, 2}}));
    QVERIFY(rig.isPlaying());
    for (int i = 0; i < 20; ++i) {
      // The pictures of two delays are needed for a tick.
      QTRY_VERIFY(rig->figures().framesDecoded >= 2 * i + 3);
      QVERIFY(rig->pullFrame(1));
    }
    QCOMPARE(rig.durationMs(), qint64(40));
    QCOMPARE(rig->figures().framesSkipped, qint64(19));
  }

  void passes_data() {
    QTest::addColumn<int>("repeats");
    QTest::addColumn<int>("passes");
    QTest::newRow("without a count") << -1 << 1;
    QTest::newRow("one repeat") << 1 << 2;
    QTest::newRow("two repeats") << 2 << 3;
  }

  void passes() {
    QFETCH(int, repeats);
    QFETCH(int, passes);
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 8}, {GifPicture::Black, 8}}, repeats));
    QVERIFY(rig.isPlaying());
    for (int round = 0; round < 2; ++round) {
      for (int pass = 0; pass < passes; ++pass) {
        const bool last = pass + 1 == passes;
        for (int expected : {kWhite, kWhite, kBlack, kBlack})
          QCOMPARE(rig.luma(last && expected == kBlack), expected);
      }
      // The last picture stays.
      QTRY_VERIFY(rig->pullFrame(1) && rig->getPlayState() == Ended);
      QCOMPARE(rig.luma(true), kBlack);
      QCOMPARE(rig->getPlayState(), int(Ended));
      rig->play();
      QCOMPARE(rig->getPlayState(), int(Playing));
    }
  }

  void pauseKeepsThePlace() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 8}, {GifPicture::Black, 12}}));
    QVERIFY(rig.isPlaying());
    const QVector<int> first = rig.lumas(3);
    QVERIFY2(first == (QVector<int>{kWhite, kWhite, kBlack}), text(first));
    rig->pause();
    QCOMPARE(rig->getPlayState(), int(Paused));
    QCOMPARE(rig.lumas(10), times(10, kBlack));
    rig->play();
    QCOMPARE(rig.lumas(3), (QVector<int>{kBlack, kBlack, kWhite}));
    rig->setHold(true);
    QCOMPARE(rig.lumas(10), times(10, kWhite));
    rig->setHold(false);
    QCOMPARE(rig.lumas(2), (QVector<int>{kWhite, kBlack}));
  }

  void stopKeepsTheFirstPicture() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 8}, {GifPicture::Black, 200}}));
    QVERIFY(rig.isPlaying());
    QCOMPARE(rig.lumas(3), (QVector<int>{kWhite, kWhite, kBlack}));
    rig->stop();
    QCOMPARE(rig->getPlayState(), int(Stopped));
    QTRY_COMPARE(codesAt(rig->pullFrame(1), 32, 18)[0], kWhite);
    QCOMPARE(rig.timeMs(), qint64(0));
    QCOMPARE(rig.lumas(10), times(10, kWhite));
    rig->play();
    QCOMPARE(rig.lumas(3), (QVector<int>{kWhite, kBlack, kBlack}));
  }

  void transparencyIsKept() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 8}, {GifPicture::Transparent, 8}}));
    QVERIFY(rig.isPlaying());
    QCOMPARE(rig.luma(), kWhite);
    QCOMPARE(rig.luma(), kWhite);
    QCOMPARE(rig.luma(), kBlack);
    const FrameRef frame = rig->pullFrame(1);
    QVERIFY(frame->hasAlpha());
    QCOMPARE(int(frame->plane(Frame::A)[18 * frame->stride(Frame::A) + 32]), 0);
  }

  void webpPlays() {
    // White, black and red for 200 ms each, twice.
    AnimationRig rig;
    rig.open(MEDIA_DIR "/three.webp");
    QVERIFY(rig.isPlaying());
    QVector<int> lumas = rig.lumas(25);
    for (int& luma : lumas)
      luma = qAbs(luma - kWhite) <= 2   ? kWhite
             : qAbs(luma - kBlack) <= 2 ? kBlack
             : qAbs(luma - kRed) <= 2   ? kRed
                                        : luma;
    const QVector<int> pass = times(5, kWhite) + times(5, kBlack) + times(5, kRed);
    QCOMPARE(lumas, pass + pass.mid(0, 10));
    QTRY_VERIFY(rig->pullFrame(1) && rig->getPlayState() == Ended);
    QCOMPARE(rig.durationMs(), qint64(600));
  }

  void rateIsThatOfTheDecodedPictures() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 4}, {GifPicture::Black, 4}}));
    tagKorviaSourceLinkState state;
    QTRY_VERIFY(rig->pullFrame(1) && rig->figures().framesPerSecond > 0);
    rig->getState(state);
    QVERIFY(state.rate > 0);
    rig->pause();
    QTRY_COMPARE(rig->figures().framesPerSecond, 0.0f);
    rig->getState(state);
    QCOMPARE(state.rate, 0.0f);
  }

  void webpWithDelaysOf10Ms() {
    AnimationRig rig;
    rig.open(MEDIA_DIR "/quick.webp");
    QVERIFY(rig.isPlaying());
    // 100 ms each.
    QTRY_COMPARE(rig.durationMs(), qint64(300));
  }

  void onePictureIsAStill() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 4}}, 3));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    for (int i = 0; i < 50; ++i)
      QCOMPARE(rig.luma(true), kWhite);
    QCOMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig.durationMs(), qint64(0));
    QCOMPARE(rig->figures().framesHeld, qint64(0));
  }

  void damagedRestIsLeftOut() {
    const QByteArray whole =
        gifBytes({{GifPicture::White, 8}, {GifPicture::Black, 8}, {GifPicture::Red, 8}}, {16, 9}, 0);
    AnimationRig rig;
    rig.open(write(whole.left(whole.size() - 100), "damaged.gif"));
    QVERIFY(rig.isPlaying());
    const QVector<int> lumas = rig.lumas(6);
    QVERIFY2(lumas == (QVector<int>{kWhite, kWhite, kBlack, kBlack, kWhite, kWhite}), text(lumas));
  }

  void hugeCanvasIsRefused() {
    WarningKeeper log;
    AnimationRig rig;
    QByteArray bytes = gifBytes({{GifPicture::White, 8}, {GifPicture::Black, 8}}, {16, 9}, 0);
    bytes.replace(6, 4, "\xff\xff\xff\xff");
    rig.open(write(bytes, "huge.gif"));
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QVERIFY2(log.lines().last().endsWith("too large, 65535 x 65535"), qPrintable(log.lines().last()));
  }

  void queueIsBounded() {
    AnimationRig rig;
    QVector<GifPicture> pictures(200, {GifPicture::White, 2});
    rig.open(gif(pictures));
    rig->pause();
    QTRY_COMPARE(rig->figures().framesDecoded, qint64(8));
    QVERIFY(rig->pullFrame(1));
    QTRY_COMPARE(rig->figures().framesDecoded, qint64(9));
    QCOMPARE(rig->getPlayState(), int(Paused));
  }

  void closeWhilePlaying() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 2}, {GifPicture::Black, 2}}));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig.close();
    rig.drop();
    QVERIFY(waitForClosedSources(10'000));
  }

  void closeAfterTheEnd() {
    AnimationRig rig;
    rig.open(gif({{GifPicture::White, 2}, {GifPicture::Black, 2}}, -1));
    QTRY_VERIFY(rig->pullFrame(1) && rig->getPlayState() == Ended);
    rig.close();
    rig.drop();
    QVERIFY(waitForClosedSources(10'000));
  }
};

QTEST_GUILESS_MAIN(AnimationTest)
#include "tst_animation.moc"
