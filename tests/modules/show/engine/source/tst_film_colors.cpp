// Colour bars of every make come out with the colours that went in, and alpha stays.
#include <QtTest>
#include <cmath>

#include "SourceRig.h"
#include "engine/frame/PictureFrame.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kBars = 8;
constexpr int kBarWidth = 40;

QString clip(const QString& name) {
  return QStringLiteral(MEDIA_DIR "/") + name;
}

/// The bars that the clips have: full colours above, weaker ones on a ramp of blue below.
QRgb upperBar(int bar) {
  return qRgb(255 * (bar % 2), 255 * (bar / 2 % 2), 255 * (bar / 4));
}
QRgb lowerBar(int bar) {
  return qRgb(191 * (bar % 2) + 20, 191 * (bar / 2 % 2) + 20, bar * 36);
}

QVector<int> codesOf(QRgb color) {
  const auto codes = codeValues(color);
  return {codes[0], codes[1], codes[2]};
}

/// BT.2020 shown as BT.709, both with gamma 2.4.
QVector<int> mappedGamut(QRgb color) {
  constexpr double kMatrix[3][3] = {
      {1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}};
  const double from[3] = {std::pow(qRed(color) / 255.0, 2.4), std::pow(qGreen(color) / 255.0, 2.4),
                          std::pow(qBlue(color) / 255.0, 2.4)};
  double to[3];
  for (int i = 0; i < 3; ++i)
    to[i] =
        255 * std::pow(std::clamp(kMatrix[i][0] * from[0] + kMatrix[i][1] * from[1] + kMatrix[i][2] * from[2],
                                  0.0, 1.0),
                       1 / 2.4);
  return codesOf(qRgb(qRound(to[0]), qRound(to[1]), qRound(to[2])));
}

}  // namespace

class FilmColorsTest : public QObject {
  Q_OBJECT

  /// The largest error over all bars, by a function from RGB to codes.
  template <typename Expected>
  static int largestError(const FrameRef& frame, Expected expected) {
    int largest = 0;
    for (int bar = 0; bar < kBars; ++bar) {
      for (int y : {30, 120}) {
        const QVector<int> wanted = expected(y == 30 ? upperBar(bar) : lowerBar(bar));
        const QVector<int> got = codesAt(frame, bar * kBarWidth + kBarWidth / 2, y);
        for (int i = 0; i < 3; ++i)
          largest = std::max(largest, std::abs(got[i] - wanted[i]));
      }
    }
    return largest;
  }

 private slots:
  void bars_data() {
    QTest::addColumn<QString>("file");
    for (const char* file :
         {"limited_h264.mp4", "full_h264.mp4",       "full_h264.mkv", "full_h264.mov", "full_h264.ts",
          "full_h264.flv",    "full_hevc.mp4",       "full_hevc.mkv", "full_hevc.mov", "full_hevc.ts",
          "full_vp9.webm",    "full_vp9.mp4",        "full_av1.mp4",  "full_av1.webm", "full_444.mkv",
          "full_10bit.mkv",   "full_range_only.mp4", "sd_ffv1.mkv",   "sd_mpeg4.avi",  "sd_full_ffv1.mkv",
          "sd_untold.mkv",    "rgb_qtrle.mov",       "rgb_png.mov",   "rgb_ffv1.mkv",  "rgb_raw.avi",
          "rgb_h264.mkv",     "422_10bit.mkv"})
      QTest::newRow(file) << file;
  }

  void bars() {
    QFETCH(QString, file);
    SourceRig rig;
    rig.openFilm(clip(file));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    const int error = largestError(rig.last(), codesOf);
    qInfo("%s : %d", qUtf8Printable(file), error);
    QVERIFY2(error <= 1, QByteArray::number(error));
  }

  void wideGamut() {
    SourceRig rig;
    rig.openFilm(clip("bt2020_sdr.mkv"));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    const int error = largestError(rig.last(), mappedGamut);
    qInfo("bt2020_sdr.mkv : %d", error);
    QVERIFY2(error <= 2, QByteArray::number(error));
  }

  void highDynamicRange_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<QVector<int>>("grays");
    // Grey at 64, 192, 320 to 960 of 10 bits, mapped by the formulas of BT.2446-1 in another program.
    QTest::newRow("pq") << "hdr_pq.mkv" << QVector<int>{16, 37, 66, 108, 168, 228, 235, 235};
    QTest::newRow("hlg") << "hdr_hlg.mkv" << QVector<int>{16, 47, 74, 99, 124, 161, 204, 235};
  }

  void highDynamicRange() {
    QFETCH(QString, file);
    QFETCH(QVector<int>, grays);
    SourceRig rig;
    rig.openFilm(clip(file));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    for (int bar = 0; bar < kBars; ++bar) {
      const QVector<int> got = codesAt(rig.last(), bar * kBarWidth + kBarWidth / 2, 30);
      QVERIFY2(isNear(got, {grays[bar], 128, 128}, 1),
               text(got) + "instead of " + QByteArray::number(grays[bar]));
    }
  }

  void alphaIsKept_data() {
    QTest::addColumn<QString>("file");
    for (const char* file : {"alpha_prores.mov", "alpha_vp9.webm", "alpha_png.mov"})
      QTest::newRow(file) << file;
  }

  // The lower half is half transparent.
  void alphaIsKept() {
    QFETCH(QString, file);
    SourceRig rig;
    rig.openFilm(clip(file));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    const FrameRef& frame = rig.last();
    QVERIFY(frame->hasAlpha());
    const auto alphaAt = [&](int x, int y) {
      return int(frame->plane(Frame::A)[y * frame->stride(Frame::A) + x]);
    };
    for (int bar = 0; bar < kBars; ++bar) {
      const int x = bar * kBarWidth + kBarWidth / 2;
      QVERIFY2(alphaAt(x, 30) >= 254, QByteArray::number(alphaAt(x, 30)));
      QVERIFY2(std::abs(alphaAt(x, 120) - 128) <= 1, QByteArray::number(alphaAt(x, 120)));
      const QVector<int> whole = codesOf(upperBar(bar));
      QVERIFY2(isNear(codesAt(frame, x, 30), whole, 3), text(codesAt(frame, x, 30)) + "not " + text(whole));
      const QVector<int> half{16 + (whole[0] - 16) / 2, 128 + (whole[1] - 128) / 2,
                              128 + (whole[2] - 128) / 2};
      QVERIFY2(isNear(codesAt(frame, x, 120), half, 3), text(codesAt(frame, x, 120)) + "not " + text(half));
    }
  }
};

QTEST_GUILESS_MAIN(FilmColorsTest)
#include "tst_film_colors.moc"
