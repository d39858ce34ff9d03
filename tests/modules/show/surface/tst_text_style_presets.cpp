// The presets of text styles: what they fill in, and whether they can be read over any picture.
#include <QPainter>
#include <QtTest>
#include <cmath>

#include "KorviaShowUtil.h"
#include "TextTextures.h"
#include "engine/items/text/TextPainter.h"

using namespace korvia;

namespace {

constexpr int kPresets = 31;
constexpr FrameSize kSize{960, 1080};

tagKorviaShowTextStyle styleOf(int preset) {
  tagKorviaShowTextStyle style;
  KorviaShowUtil::loadTextStylePreset(static_cast<KorviaShowTextStylePreset>(preset), style);
  return style;
}

double luminanceOf(QRgb color) {
  const auto linear = [](int value) { return std::pow(value / 255.0, 2.2); };
  return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

double contrastOf(double a, double b) {
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QImage background(const QString& kind, QSize size) {
  QImage image(size, QImage::Format_RGB32);
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x) {
      // Tiles of 4 pixels in colours of all lightnesses.
      const quint32 noise = static_cast<quint32>((x / 4) * 7919 + (y / 4) * 104729) * 2654435761U;
      image.setPixel(x, y,
                     kind == "dark"     ? qRgb(16, 16, 18)
                     : kind == "bright" ? qRgb(238, 238, 234)
                                        : noise >> 8);
    }
  return image;
}

/// Mean luminance within the letters and close around them.
struct Lightness {
  double letters = 0;
  double around = 0;
};

Lightness measured(const QImage& shown, const QImage& letters) {
  double sums[2] = {};
  int counts[2] = {};
  const auto alphaAt = [&letters](int x, int y) {
    return letters.valid(x, y) ? qAlpha(letters.pixel(x, y)) : 0;
  };
  for (int y = 0; y < shown.height(); ++y)
    for (int x = 0; x < shown.width(); ++x) {
      int most = 0;
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
          most = std::max(most, alphaAt(x + dx, y + dy));
      const bool inside = alphaAt(x, y) == 255;
      const bool around = alphaAt(x, y) == 0 && most > 127;
      if (!inside && !around)
        continue;
      sums[around ? 1 : 0] += luminanceOf(shown.pixel(x, y));
      ++counts[around ? 1 : 0];
    }
  return {sums[0] / std::max(1, counts[0]), sums[1] / std::max(1, counts[1])};
}

}  // namespace

class TextStylePresetsTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir textures_;

 private slots:
  void initTestCase() { QVERIFY(writeTextTextures(textures_.path())); }

  void theFirstPresetIsANewStyle() { QVERIFY(styleOf(0) == tagKorviaShowTextStyle()); }
  void everyNumberHasALookOfItsOwn() {
    for (int preset = 0; preset < kPresets; ++preset) {
      tagKorviaShowTextStyle style = styleOf(preset);
      QCOMPARE(style.preset, preset);
      for (int other = 0; other < preset; ++other) {
        tagKorviaShowTextStyle before = styleOf(other);
        before.preset = preset;
        QVERIFY2(!(before == style), qPrintable(QString("%1 is %2").arg(preset).arg(other)));
      }
    }
  }
  void otherNumbersChangeNothing() {
    for (const int number : {-1, kPresets, 1 << 30}) {
      tagKorviaShowTextStyle style;
      style.fontSize = 77;
      const tagKorviaShowTextStyle before = style;
      QVERIFY(!KorviaShowUtil::loadTextStylePreset(static_cast<KorviaShowTextStylePreset>(number), style));
      QVERIFY(style == before);
    }
  }
  void theFontStays() {
    tagKorviaShowTextStyle style;
    style.fontName = QStringLiteral("DejaVu Sans");
    style.fontSize = 77;
    KorviaShowUtil::loadTextStylePreset(TextStyleTexture0001, style);
    QCOMPARE(style.fontName, QString("DejaVu Sans"));
    QCOMPARE(style.fontSize, 77);
  }
  void texturesAreBareNamesOfFilesThatAreThere() {
    for (int preset = TextStyleTexture0001; preset <= TextStyleTexture0004; ++preset) {
      const tagKorviaShowTextStyle style = styleOf(preset);
      QCOMPARE(style.colorMode, static_cast<qint32>(TextColorTexture));
      QVERIFY(QFile::exists(textures_.filePath(style.texturePath)));
    }
    tagKorviaShowTextStyle style;
    style.texturePath = QStringLiteral(R"(D:\show\Common\TextTexture\gold.tga)");
    KorviaShowUtil::loadTextStylePreset(TextStyleSolidRed, style);
    QCOMPARE(style.texturePath, QString("gold.tga"));
  }
  void looksAreWhatTheirNamesSay() {
    for (int preset = TextStyleSolidShadowWhite; preset <= TextStyleSolidShadowBlue; ++preset)
      QVERIFY(qAlpha(styleOf(preset).shadowColor) > 0 && styleOf(preset).shadowDistanceX != 0);
    for (int preset = TextStyleSolidOutlineWhite; preset <= TextStyleSolidOutlineBlue; ++preset)
      QVERIFY(qAlpha(styleOf(preset).outlineColor) == 255 && styleOf(preset).outlineSize > 0);
    for (int preset = TextStyleOutlineWhite; preset <= TextStyleOutlineBlue; ++preset)
      QVERIFY(qAlpha(styleOf(preset).solidColor) == 0 && styleOf(preset).outlineSize > 0);
    for (int preset = TextStyleGradientWhite; preset <= TextStyleGradientYellow; ++preset)
      QCOMPARE(styleOf(preset).colorMode, static_cast<qint32>(TextColorGradient));
  }

  void textsCanBeRead_data() {
    QTest::addColumn<int>("preset");
    QTest::addColumn<QString>("kind");
    // The look of a new style is given, and white on yellow is not readable over bright pictures.
    for (int preset = 1; preset < kPresets; ++preset)
      for (const char* kind : {"dark", "bright", "busy"})
        QTest::addRow("%d over %s", preset, kind) << preset << QString::fromLatin1(kind);
  }
  void textsCanBeRead() {
    QFETCH(int, preset);
    QFETCH(QString, kind);
    tagKorviaShowTextInfo info;
    info.text = QStringLiteral("News 42");
    info.style = styleOf(preset);
    info.style.texturePath = textures_.filePath(info.style.texturePath);
    TextPainter painter;
    const TextPicture picture = painter.paint(info, kSize, {});

    tagKorviaShowTextInfo plain = info;
    plain.style.colorMode = TextColorSolid;
    plain.style.solidColor = 0xFFFFFFFF;
    plain.style.outlineColor = 0;
    plain.style.shadowColor = 0;
    const TextPicture letters = painter.paint(plain, kSize, {});
    QImage mask(picture.image.size(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter(&mask).drawImage(letters.corner - picture.corner, letters.image);

    QImage shown = background(kind, picture.image.size());
    QPainter(&shown).drawImage(0, 0, picture.image);
    const Lightness lightness = measured(shown, mask);
    const double contrast = contrastOf(lightness.letters, lightness.around);
    QVERIFY2(contrast >= 3, qPrintable(QString::number(contrast)));
  }
};

QTEST_MAIN(TextStylePresetsTest)
#include "tst_text_style_presets.moc"
