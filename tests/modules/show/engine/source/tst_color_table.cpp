// The table of wide gamuts and high dynamic ranges against its formulas, and the formulas against colours
// whose result is known.
#include <QtTest>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "engine/frame/FramePool.h"
#include "engine/source/ColorTable.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

using Kind = ColorTable::Kind;
using Rgb = std::array<double, 3>;
using Codes = std::array<int, 3>;

constexpr Kind kKinds[] = {Kind::Pq, Kind::Hlg, Kind::Bt2020, Kind::P3};
constexpr const char* kNames[] = {"PQ", "HLG", "BT.2020", "P3"};

void everyKind() {
  QTest::addColumn<int>("kind");
  for (std::size_t i = 0; i < std::size(kKinds); ++i)
    QTest::newRow(kNames[i]) << static_cast<int>(kKinds[i]);
}

Rgb times(const double (&matrix)[3][3], const Rgb& rgb) {
  Rgb result;
  for (std::size_t i = 0; i < 3; ++i)
    result[i] = matrix[i][0] * rgb[0] + matrix[i][1] * rgb[1] + matrix[i][2] * rgb[2];
  return result;
}

/// Linear light with the primaries of BT.709 in those of the kind (BT.2087, and the same for P3).
Rgb inPrimariesOf(Kind kind, const Rgb& rgb) {
  constexpr double kTo2020[3][3] = {
      {0.627404, 0.329283, 0.043313}, {0.069097, 0.919540, 0.011362}, {0.016391, 0.088013, 0.895595}};
  constexpr double kToP3[3][3] = {
      {0.822462, 0.177538, 0.0}, {0.033194, 0.966806, 0.0}, {0.017083, 0.072397, 0.910520}};
  return kind == Kind::P3 ? times(kToP3, rgb) : times(kTo2020, rgb);
}

double lumaOf(const Rgb& rgb) {
  return 0.2627 * rgb[0] + 0.6780 * rgb[1] + 0.0593 * rgb[2];
}

/// Inverse of SMPTE ST 2084, for light of at most 1000 cd/m2, which is 1.
double pq(double light) {
  constexpr double m1 = 0.1593017578125, m2 = 78.84375, c1 = 0.8359375, c2 = 18.8515625, c3 = 18.6875;
  const double power = std::pow(light / 10, m1);
  return std::pow((c1 + c2 * power) / (1 + c3 * power), m2);
}

/// BT.2100 HLG, from scene light.
double hlg(double scene) {
  constexpr double a = 0.17883277, b = 0.28466892, c = 0.55991073;
  return scene <= 1.0 / 12 ? std::sqrt(3 * scene) : a * std::log(12 * scene - b) + c;
}

/// The 10-bit codes of a colour that BT.709 has, given in linear light of 0 to 1.
Codes codesOf(Kind kind, const Rgb& light709) {
  Rgb rgb = inPrimariesOf(kind, light709);
  if (kind == Kind::Hlg) {
    // The system gamma of a display of 1000 cd/m2 is 1.2.
    const double y = lumaOf(rgb);
    for (double& value : rgb)
      value = y <= 0 ? 0 : value * std::pow(y, 1 / 1.2 - 1);
  }
  for (double& value : rgb) {
    value = std::clamp(value, 0.0, 1.0);
    value = kind == Kind::Pq ? pq(value) : kind == Kind::Hlg ? hlg(value) : std::pow(value, 1 / 2.4);
  }
  const double y = lumaOf(rgb);
  return {static_cast<int>(std::lround(64 + 876 * y)),
          static_cast<int>(std::lround(512 + 896 * (rgb[2] - y) / 1.8814)),
          static_cast<int>(std::lround(512 + 896 * (rgb[0] - y) / 1.4746))};
}

/// What the table makes of a row of colours, each 2 x 2 samples.
std::vector<Codes> mapped(Kind kind, const std::vector<Codes>& colors) {
  const auto count = colors.size();
  std::vector<std::uint16_t> luma(count * 2);
  std::vector<std::uint16_t> u(count);
  std::vector<std::uint16_t> v(count);
  for (std::size_t i = 0; i < count; ++i) {
    luma[2 * i] = luma[2 * i + 1] = static_cast<std::uint16_t>(colors[i][0]);
    u[i] = static_cast<std::uint16_t>(colors[i][1]);
    v[i] = static_cast<std::uint16_t>(colors[i][2]);
  }
  ColorTable::Picture picture;
  // Both rows of luma are the same.
  picture.plane[0] = {luma.data(), 0};
  picture.plane[1] = {u.data(), 0};
  picture.plane[2] = {v.data(), 0};
  Frame frame(FrameSize{static_cast<int>(count) * 2, 2});
  ColorTable::of(kind)->apply(picture, frame);
  std::vector<Codes> result(count);
  for (std::size_t i = 0; i < count; ++i)
    result[i] = {frame.plane(Frame::Y)[2 * i + 1 + static_cast<std::size_t>(frame.stride(Frame::Y))],
                 frame.plane(Frame::U)[i], frame.plane(Frame::V)[i]};
  return result;
}

/// Distance to the formulas' result, not rounded.
double errorOf(Kind kind, const Codes& color, const Codes& got) {
  const std::array<double, 3> exact = ColorTable::exact(kind, color);
  double largest = 0;
  for (std::size_t i = 0; i < 3; ++i)
    largest = std::max(largest, std::abs(got[i] - exact[i]));
  return largest;
}

}  // namespace

class ColorTableTest : public QObject {
  Q_OBJECT

 private:
  static Kind kind() {
    QFETCH(int, kind);
    return static_cast<Kind>(kind);
  }

 private slots:
  void theTableIsNearItsFormulas_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("saturated");
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
      QTest::addRow("%s", kNames[i]) << static_cast<int>(kKinds[i]) << false;
      QTest::addRow("%s, saturated", kNames[i]) << static_cast<int>(kKinds[i]) << true;
    }
  }
  void theTableIsNearItsFormulas() {
    QFETCH(bool, saturated);
    // Colours of BT.709 in steps that look even: saturated ones too, or those whose weakest component is at
    // least a third.
    constexpr int kSteps = 25;
    const int first = saturated ? 0 : (kSteps - 1) / 3;
    std::vector<Codes> colors;
    const auto lightOf = [](int step) { return std::pow(step / (kSteps - 1.0), 2.4); };
    for (int r = first; r < kSteps; ++r)
      for (int g = first; g < kSteps; ++g)
        for (int b = first; b < kSteps; ++b)
          colors.push_back(codesOf(kind(), {lightOf(r), lightOf(g), lightOf(b)}));
    const std::vector<Codes> got = mapped(kind(), colors);
    double largest = 0;
    double sum = 0;
    std::size_t worst = 0;
    for (std::size_t i = 0; i < colors.size(); ++i) {
      const double error = errorOf(kind(), colors[i], got[i]);
      sum += error;
      if (error > largest) {
        largest = error;
        worst = i;
      }
    }
    qInfo("largest error %.2f codes at %d %d %d, mean %.2f", largest, colors[worst][0], colors[worst][1],
          colors[worst][2], sum / static_cast<double>(colors.size()));
    QVERIFY2(largest <= 2, QByteArray::number(largest));
  }

  void greyStaysGreyAndRises_data() { everyKind(); }
  void greyStaysGreyAndRises() {
    std::vector<Codes> colors;
    for (int code = 0; code < 1024; ++code)
      colors.push_back({code, 512, 512});
    const std::vector<Codes> got = mapped(kind(), colors);
    for (std::size_t code = 0; code < colors.size(); ++code) {
      QCOMPARE(got[code][1], 128);
      QCOMPARE(got[code][2], 128);
      if (code > 0)
        QVERIFY2(got[code][0] >= got[code - 1][0], QByteArray::number(qulonglong(code)));
      QVERIFY(errorOf(kind(), colors[code], got[code]) <= 1);
    }
    // Black and all below it, white and all above it.
    QCOMPARE(got[0][0], 16);
    QCOMPARE(got[64][0], 16);
    QCOMPARE(got[940][0], 235);
    QCOMPARE(got[1023][0], 235);
  }

  void standardGreyIsAsBefore() {
    // Without a tone map a grey keeps its code: 10 bits become 8.
    for (const Kind kind : {Kind::Bt2020, Kind::P3})
      for (int code = 64; code <= 940; code += 4)
        QVERIFY(std::abs(ColorTable::exact(kind, {code, 512, 512})[0] - code / 4.0) < 0.01);
  }

  void colorsOfBt709ComeBack() {
    // As RGB of 0 to 1 with gamma: a red, a green, a blue and a skin, and their codes in BT.709.
    const struct {
      Rgb rgb;
      Codes expected;
    } kColors[] = {{{0.8, 0.3, 0.3}, {105, 115, 184}},
                   {{0.3, 0.8, 0.3}, {160, 85, 77}},
                   {{0.3, 0.3, 0.8}, {90, 184, 123}},
                   {{0.8, 0.6, 0.5}, {155, 112, 151}}};
    for (const Kind kind : {Kind::Bt2020, Kind::P3}) {
      for (const auto& color : kColors) {
        Rgb light;
        for (std::size_t i = 0; i < 3; ++i)
          light[i] = std::pow(color.rgb[i], 2.4);
        const std::array<double, 3> got = ColorTable::exact(kind, codesOf(kind, light));
        for (std::size_t i = 0; i < 3; ++i)
          QVERIFY2(std::abs(got[i] - color.expected[i]) <= 1,
                   qPrintable(QString("%1 instead of %2").arg(got[i]).arg(color.expected[i])));
      }
    }
  }

  void codesOutsideTheRangeStayInside_data() { everyKind(); }
  void codesOutsideTheRangeStayInside() {
    std::vector<Codes> colors;
    for (const int y : {0, 3, 64, 500, 940, 1023})
      for (const int u : {0, 64, 512, 960, 1023})
        for (const int v : {0, 64, 512, 960, 1023})
          colors.push_back({y, u, v});
    for (const Codes& got : mapped(kind(), colors)) {
      QVERIFY(got[0] >= 15 && got[0] <= 236);
      QVERIFY(got[1] >= 15 && got[1] <= 241);
      QVERIFY(got[2] >= 15 && got[2] <= 241);
    }
  }

  void chromaIsThatOfTheFourSamplesTogether() {
    // A picture of 2 x 2 with four greys and one colour difference: each luma of its own, one chroma.
    const std::uint16_t luma[] = {200, 400, 600, 800};
    const std::uint16_t u = 480;
    const std::uint16_t v = 560;
    ColorTable::Picture picture;
    picture.plane[0] = {luma, 2 * sizeof(std::uint16_t)};
    picture.plane[1] = {&u, 0};
    picture.plane[2] = {&v, 0};
    Frame frame(FrameSize{2, 2});
    ColorTable::of(Kind::Bt2020)->apply(picture, frame);
    for (int i = 0; i < 4; ++i) {
      const double exact = ColorTable::exact(Kind::Bt2020, {luma[i], u, v})[0];
      QVERIFY(std::abs(frame.plane(Frame::Y)[i / 2 * frame.stride(Frame::Y) + i % 2] - exact) <= 1);
    }
    const std::array<double, 3> mean = ColorTable::exact(Kind::Bt2020, {500, u, v});
    QVERIFY(std::abs(frame.plane(Frame::U)[0] - mean[1]) <= 1);
    QVERIFY(std::abs(frame.plane(Frame::V)[0] - mean[2]) <= 1);
  }

  void tablesAreSharedWhileSomebodyHoldsThem() {
    const auto one = ColorTable::of(Kind::Pq);
    QCOMPARE(ColorTable::of(Kind::Pq), one);
    QVERIFY(ColorTable::of(Kind::Hlg) != one);
    const std::weak_ptr<const ColorTable> watched = ColorTable::of(Kind::P3);
    QVERIFY(watched.expired());
  }

  void kindsByColorimetry() {
    const auto kindOf = [](const char* text) {
      GstVideoColorimetry colors;
      return gst_video_colorimetry_from_string(&colors, text) ? ColorTable::kindOf(colors) : std::nullopt;
    };
    QVERIFY(!kindOf("bt709"));
    QVERIFY(!kindOf("bt601"));
    QVERIFY(!kindOf("sRGB"));
    QVERIFY(kindOf("bt2020-10") == Kind::Bt2020);
    QVERIFY(kindOf("bt2100-pq") == Kind::Pq);
    QVERIFY(kindOf("bt2100-hlg") == Kind::Hlg);
    // P3 with the white of cinemas, and with that of D65.
    QVERIFY(kindOf("2:3:5:10") == Kind::P3);
    QVERIFY(kindOf("2:3:5:11") == Kind::P3);
  }
};

int main(int argc, char** argv) {
  return test::runWithEveryInstructionSet<ColorTableTest>(argc, argv);
}

#include "tst_color_table.moc"
