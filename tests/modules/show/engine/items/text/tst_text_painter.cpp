// Drawn texts: places, fills, effects, scripts, and records that make no sense.
#include <QTemporaryDir>
#include <QtTest>
#include <limits>
#include <thread>
#include <vector>

#include "engine/items/text/TextPainter.h"
#include "support/LogLines.h"

using namespace korvia;

namespace {

constexpr FrameSize kHd{1920, 1080};
constexpr quint32 kNone = 0x00000000;

/// Red letters without outline and shadow.
tagKorviaShowTextInfo plainText(const QString& text = QStringLiteral("Hag")) {
  tagKorviaShowTextInfo info;
  info.text = text;
  info.style.fontName = QStringLiteral("DejaVu Sans");
  info.style.solidColor = 0xFFFF0000;
  info.style.outlineColor = kNone;
  info.style.shadowColor = kNone;
  return info;
}

TextPicture painted(const tagKorviaShowTextInfo& info, FrameSize size = kHd) {
  return TextPainter().paint(info, size, QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9)));
}

/// The rectangle of all that is seen, from the centre of the item.
QRect inkOf(const TextPicture& picture) {
  QRect ink;
  for (int y = 0; y < picture.image.height(); ++y)
    for (int x = 0; x < picture.image.width(); ++x)
      if (qAlpha(picture.image.pixel(x, y)) != 0)
        ink |= QRect(x, y, 1, 1);
  return ink.translated(picture.corner);
}

QRgb pixelAt(const TextPicture& picture, QPoint fromCentre) {
  const QPoint place = fromCentre - picture.corner;
  return picture.image.rect().contains(place) ? picture.image.pixel(place) : 0;
}

bool isNear(QRgb a, QRgb b, int most) {
  return qAbs(qAlpha(a) - qAlpha(b)) <= most && qAbs(qRed(a) - qRed(b)) <= most &&
         qAbs(qGreen(a) - qGreen(b)) <= most && qAbs(qBlue(a) - qBlue(b)) <= most;
}

/// A straight formula for what a text with outline and shadow, both without blur, looks like.
class SlowComposition {
 public:
  SlowComposition(const TextPicture& glyphs, const tagKorviaShowTextStyle& style)
      : glyphs_(glyphs), style_(style) {}

  QRgb at(QPoint place) const {
    const double glyph = coverage(place);
    const double outline = dilated(place);
    const QPoint offset(style_.shadowDistanceX, -style_.shadowDistanceY);
    const double shadow = dilated(place - offset);
    const double fillPart = glyph * alphaOf(style_.solidColor);
    const double outlinePart = outline * (1 - glyph) * alphaOf(style_.outlineColor);
    const double shadowPart = shadow * alphaOf(style_.shadowColor) * (1 - fillPart - outlinePart);
    const auto channel = [&](int (*part)(QRgb)) {
      return static_cast<int>(std::lround(fillPart * part(style_.solidColor) +
                                          outlinePart * part(style_.outlineColor) +
                                          shadowPart * part(style_.shadowColor)));
    };
    return qRgba(channel(qRed), channel(qGreen), channel(qBlue),
                 static_cast<int>(std::lround(255 * (fillPart + outlinePart + shadowPart))));
  }

 private:
  static double alphaOf(QRgb color) { return qAlpha(color) / 255.0; }
  double coverage(QPoint place) const { return qAlpha(pixelAt(glyphs_, place)) / 255.0; }
  double dilated(QPoint place) const {
    const int radius = style_.outlineSize;
    double most = 0;
    for (int dy = -radius; dy <= radius; ++dy)
      for (int dx = -radius; dx <= radius; ++dx)
        if (const double sample = coverage(place + QPoint(dx, dy)); sample > 0)
          most = std::max(most, sample + radius - std::hypot(dx, dy));
    return std::min(most, 1.0);
  }

  const TextPicture& glyphs_;
  const tagKorviaShowTextStyle& style_;
};

}  // namespace

class TextPainterTest : public QObject {
  Q_OBJECT

 private slots:
  void aTextLiesAroundItsCentre() {
    const TextPicture picture = painted(plainText("HHH"));
    const QRect ink = inkOf(picture);
    QVERIFY(qAbs(ink.center().x()) <= 2);
    QVERIFY(qAbs(picture.box.center().x()) < 0.01);
    QVERIFY(picture.box.contains(QRectF(ink)));
    QVERIFY(ink.height() >= 26 && ink.height() <= 32);
    QCOMPARE(picture.image.format(), QImage::Format_ARGB32_Premultiplied);
  }
  void sizesFollowTheRenderHeight_data() {
    QTest::addColumn<int>("height");
    for (const int height : {360, 720, 1000, 2160})
      QTest::addRow("%d", height) << height;
  }
  void sizesFollowTheRenderHeight() {
    QFETCH(int, height);
    const double scale = height / 1080.0;
    tagKorviaShowTextInfo info = plainText("Hamburg 42");
    info.style.outlineColor = 0xFF00FF00;
    info.style.outlineSize = 6;
    info.style.shadowColor = 0xFF0000FF;
    info.style.shadowDistanceX = 12;
    const QRect full = inkOf(painted(info));
    const TextPicture picture = painted(info, {height * 16 / 9, height});
    const QRect ink = inkOf(picture);
    const QRectF expected(QPointF(full.topLeft()) * scale, QSizeF(full.size()) * scale);
    QVERIFY(qAbs(ink.left() - expected.left()) < 3 * std::max(scale, 1.0));
    QVERIFY(qAbs(ink.top() - expected.top()) < 3 * std::max(scale, 1.0));
    QVERIFY(qAbs(ink.width() - expected.width()) < 5 * std::max(scale, 1.0));
    QVERIFY(qAbs(picture.box.width() - painted(info).box.width() * scale) < 0.01);
  }
  void effectsLeaveTheTextInItsPlace() {
    const TextPicture plain = painted(plainText());
    tagKorviaShowTextInfo info = plainText();
    info.style.outlineColor = 0xFF00FF00;
    info.style.outlineSize = 9;
    info.style.shadowColor = 0xFF0000FF;
    info.style.shadowDistanceX = 20;
    info.style.shadowDistanceY = 15;
    const TextPicture full = painted(info);
    QCOMPARE(full.box, plain.box);
    for (int y = 0; y < plain.image.height(); ++y)
      for (int x = 0; x < plain.image.width(); ++x)
        if (qAlpha(plain.image.pixel(x, y)) == 255)
          QCOMPARE(pixelAt(full, plain.corner + QPoint(x, y)), plain.image.pixel(x, y));
  }
  void aPositiveShadowDistanceIsRightAndUp() {
    tagKorviaShowTextInfo info = plainText();
    const QRect plain = inkOf(painted(info));
    info.style.shadowColor = 0xFF0000FF;
    info.style.shadowBlur = 0;
    info.style.shadowDistanceX = 7;
    info.style.shadowDistanceY = 11;
    QCOMPARE(inkOf(painted(info)), plain.adjusted(0, -11, 7, 0));
    info.style.shadowDistanceX = -7;
    info.style.shadowDistanceY = -11;
    QCOMPARE(inkOf(painted(info)), plain.adjusted(-7, 0, 0, 11));
  }
  void partsLieOverEachOther_data() {
    QTest::addColumn<quint32>("solid");
    QTest::addColumn<quint32>("outline");
    QTest::addColumn<quint32>("shadow");
    QTest::newRow("opaque") << 0xFFC02040U << 0xFF20C060U << 0xFF4060F0U;
    QTest::newRow("translucent") << 0x80C02040U << 0xA020C060U << 0x604060F0U;
    QTest::newRow("hollow") << 0x00C02040U << 0xFF20C060U << 0xC04060F0U;
  }
  void partsLieOverEachOther() {
    QFETCH(quint32, solid);
    QFETCH(quint32, outline);
    QFETCH(quint32, shadow);
    const TextPicture glyphs = painted(plainText("Rg"));
    tagKorviaShowTextInfo info = plainText("Rg");
    info.style.solidColor = solid;
    info.style.outlineColor = outline;
    info.style.outlineSize = 3;
    info.style.outlineBlur = 0;
    info.style.shadowColor = shadow;
    info.style.shadowDistanceX = 5;
    info.style.shadowDistanceY = -4;
    info.style.shadowBlur = 0;
    const TextPicture picture = painted(info);
    const SlowComposition slow(glyphs, info.style);
    const QRect all = QRect(picture.corner, picture.image.size()).adjusted(-3, -3, 3, 3);
    for (int y = all.top(); y <= all.bottom(); ++y)
      for (int x = all.left(); x <= all.right(); ++x)
        QVERIFY2(isNear(pixelAt(picture, {x, y}), slow.at({x, y}), 3),
                 qPrintable(QString("%1, %2").arg(x).arg(y)));
  }
  void aGradientRunsFromTopToBottom() {
    tagKorviaShowTextInfo info = plainText(QStringLiteral("III"));
    info.style.colorMode = TextColorGradient;
    info.style.gradientBeginColor = 0xFF0000FF;
    info.style.gradientEndColor = 0xFFFFFF00;
    const TextPicture picture = painted(info);
    const int x = picture.image.width() / 2;
    const QRgb top = picture.image.pixel(x, 1);
    const QRgb middle = picture.image.pixel(x, picture.image.height() / 2);
    const QRgb bottom = picture.image.pixel(x, picture.image.height() - 2);
    QVERIFY(qBlue(top) > 230 && qRed(top) < 25);
    QVERIFY(qAbs(qBlue(middle) - 128) < 12 && qAbs(qRed(middle) - 128) < 12);
    QVERIFY(qBlue(bottom) < 25 && qRed(bottom) > 230);
  }
  void aTextureIsTiled() {
    const QTemporaryDir folder;
    QImage tile(8, 8, QImage::Format_RGB32);
    tile.fill(Qt::blue);
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 4; ++x)
        tile.setPixel(x, y, qRgb(0, 255, 0));
    tagKorviaShowTextInfo info = plainText(QStringLiteral("\u2588\u2588\u2588"));
    info.style.colorMode = TextColorTexture;
    info.style.texturePath = folder.filePath("tile.png");
    QVERIFY(tile.save(info.style.texturePath));
    const TextPicture picture = painted(info);
    const int y = picture.image.height() / 2;
    int changes = 0;
    for (int x = 4; x < picture.image.width() - 4; ++x)
      changes +=
          (qGreen(picture.image.pixel(x, y)) > 127) != (qGreen(picture.image.pixel(x - 1, y)) > 127) ? 1 : 0;
    QVERIFY2(qAbs(changes - picture.image.width() / 4) <= 3, qPrintable(QString::number(changes)));
  }
  void aMissingTextureIsTheSolidColor() {
    tagKorviaShowTextInfo info = plainText();
    const QImage solid = painted(info).image;
    info.style.colorMode = TextColorTexture;
    info.style.texturePath = QStringLiteral("d:\\nowhere\\.tga");
    const test::LogLines log;
    TextPainter painter;
    QCOMPARE(painter.paint(info, kHd, {}).image, solid);
    QCOMPARE(painter.paint(info, kHd, {}).image, solid);
    QCOMPARE(log.count("texture cannot be shown"), 1);
  }
  void emojiKeepTheirColors() {
    tagKorviaShowTextInfo info = plainText(QStringLiteral("\U0001F600"));
    info.style.solidColor = 0xFF0000FF;
    info.style.outlineColor = 0xFF00FF00;
    info.style.outlineSize = 4;
    info.style.outlineBlur = 0;
    const TextPicture picture = painted(info);
    const QRect ink = inkOf(picture);
    QVERIFY2(ink.width() > 35 && ink.width() < 80, qPrintable(QString::number(ink.width())));
    const QRgb cheek = pixelAt(picture, ink.center() + QPoint(-ink.width() / 4, ink.height() / 30));
    QVERIFY2(qRed(cheek) > 150 && qBlue(cheek) < 120, qPrintable(QString::number(cheek, 16)));
    QVERIFY(isNear(pixelAt(picture, {ink.left() + 1, ink.center().y()}), 0xFF00FF00, 8));
    info.style.fontSize = 200;
    QVERIFY(inkOf(painted(info)).width() > 170);
  }
  void scriptsAreDrawn_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("chinese") << QStringLiteral("\u65B0\u95FB\u76F4\u64AD");
    QTest::newRow("arabic") << QStringLiteral("\u0645\u0631\u062D\u0628\u0627");
    QTest::newRow("devanagari") << QStringLiteral("\u0928\u092E\u0938\u094D\u0924\u0947");
    QTest::newRow("hebrew") << QStringLiteral("\u05E9\u05DC\u05D5\u05DD");
    QTest::newRow("joined emoji") << QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467");
  }
  void scriptsAreDrawn() {
    QFETCH(QString, text);
    const TextPicture picture = painted(plainText(text));
    QVERIFY(!picture.image.isNull());
    // A character that no font has is drawn as the same box, whichever it is.
    QVERIFY(picture.image != painted(plainText(QString(text.size(), QChar(0xE123)))).image);
    QVERIFY(inkOf(picture).width() > 30);
  }
  void boxesAlignAndClip() {
    tagKorviaShowTextInfo info = plainText("HHH");
    info.width = 0.5;
    info.height = 0.5;
    info.hAlign = 1;
    info.vAlign = 0x40;
    TextPicture picture = painted(info);
    QCOMPARE(picture.box, QRectF(-480, -270, 960, 540));
    QVERIFY(qAbs(inkOf(picture).left() + 480) < 8);
    QVERIFY(inkOf(picture).bottom() > 270 - 20 && inkOf(picture).bottom() < 270);
    // The vertical choice in hAlign wins, and leaves the text centred.
    info.hAlign = 0x20;
    picture = painted(info);
    QVERIFY(inkOf(picture).top() < -270 + 20);
    QVERIFY(qAbs(inkOf(picture).center().x()) < 4);
    info.hAlign = 2;
    info.vAlign = 0x84;
    picture = painted(info);
    QVERIFY(qAbs(inkOf(picture).right() - 480) < 8);
    QVERIFY(qAbs(inkOf(picture).center().y()) < 15);
  }
  void whatDoesNotFitIsClippedToBoxAndOutline() {
    tagKorviaShowTextInfo info = plainText(QString("HHHH ").repeated(40));
    info.width = 0.2;
    info.height = 0.12;
    const QRect box(-192, -65, 384, 130);
    QVERIFY(box.adjusted(-1, -1, 1, 1).contains(inkOf(painted(info))));
    QVERIFY(inkOf(painted(info)).height() > 120);
    info.style.outlineColor = 0xFF00FF00;
    info.style.outlineSize = 10;
    info.style.outlineBlur = 0;
    QVERIFY(box.adjusted(-11, -11, 11, 11).contains(inkOf(painted(info))));
  }
  void aShadowOfATextThatFitsIsWhole() {
    tagKorviaShowTextInfo info = plainText();
    info.style.shadowColor = 0xFF0000FF;
    info.style.shadowDistanceX = 100;
    info.style.shadowDistanceY = -100;
    info.style.shadowBlur = 0;
    const QRect plain = inkOf(painted(plainText()));
    QCOMPARE(inkOf(painted(info)), plain.adjusted(0, 0, 100, 100));
  }
  void theTimeIsShown() {
    tagKorviaShowTextInfo info = plainText("${Time}");
    info.timeFormat = QStringLiteral("hh:mm");
    QCOMPARE(painted(info).image, painted(plainText("07:08")).image);
  }
  void otherThreadsDrawTheSame() {
    const tagKorviaShowTextInfo info = plainText(QStringLiteral("Ag 42 \u65B0\u95FB \U0001F600"));
    const QImage expected = painted(info).image;
    QImage drawn[2];
    std::vector<std::thread> threads;
    for (QImage& image : drawn)
      threads.emplace_back([&image, &info] { image = painted(info).image; });
    for (std::thread& thread : threads)
      thread.join();
    QCOMPARE(drawn[0], expected);
    QCOMPARE(drawn[1], expected);
  }
  void nothingIsDrawnOfNothing_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("fontSize");
    QTest::addColumn<int>("renderWidth");
    QTest::newRow("no text") << "" << 40 << 1920;
    QTest::newRow("blanks") << " \n\t " << 40 << 1920;
    QTest::newRow("size 0") << "a" << 0 << 1920;
    QTest::newRow("size below 0") << "a" << std::numeric_limits<int>::min() << 1920;
    QTest::newRow("no picture") << "a" << 40 << 0;
  }
  void nothingIsDrawnOfNothing() {
    QFETCH(QString, text);
    QFETCH(int, fontSize);
    QFETCH(int, renderWidth);
    tagKorviaShowTextInfo info = plainText(text);
    info.style.fontSize = fontSize;
    QVERIFY(painted(info, {renderWidth, 1080}).image.isNull());
  }
  void recordsWithoutSenseAreBounded_data() {
    QTest::addColumn<tagKorviaShowTextInfo>("info");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const auto row = [](const char* name, auto change) {
      tagKorviaShowTextInfo info;
      change(info);
      QTest::newRow(name) << info;
    };
    row("size 1", [](auto& info) { info.style.fontSize = 1; });
    row("size 999", [](auto& info) { info.style.fontSize = 999; });
    row("largest size", [](auto& info) { info.style.fontSize = std::numeric_limits<int>::max(); });
    row("nan", [nan](auto& info) {
      info.x = info.y = info.width = info.height = nan;
      info.style.shadowBlur = info.style.outlineBlur = std::numeric_limits<float>::quiet_NaN();
    });
    row("inf", [inf](auto& info) {
      info.x = info.y = info.width = info.height = inf;
      info.style.shadowBlur = info.style.outlineBlur = std::numeric_limits<float>::infinity();
    });
    row("negative", [](auto& info) {
      info.width = info.height = -1e300;
      info.style.outlineSize = info.style.shadowDistanceX = info.style.shadowDistanceY =
          std::numeric_limits<int>::min();
      info.style.shadowBlur = info.style.outlineBlur = -1e30F;
    });
    row("large", [](auto& info) {
      info.width = info.height = 1e300;
      info.style.outlineSize = info.style.shadowDistanceX = info.style.shadowDistanceY =
          std::numeric_limits<int>::max();
      info.style.shadowBlur = info.style.outlineBlur = 1e30F;
    });
    row("narrow", [](auto& info) { info.width = info.height = 1e-300; });
    row("a megabyte in a line", [](auto& info) { info.text = QString(1 << 20, QLatin1Char('w')); });
    row("a megabyte of lines", [](auto& info) { info.text = QString("a\n").repeated(1 << 19); });
    row("a megabyte in a box", [](auto& info) {
      info.text = QString("word ").repeated(200000);
      info.width = info.height = 0.5;
    });
    row("a megabyte of accents", [](auto& info) { info.text = QString(1 << 20, QChar(0x0301)); });
    row("a megabyte of marks of direction",
        [](auto& info) { info.text = QString(1 << 20, QChar(0x202E)) + "a"; });
    row("control characters", [](auto& info) {
      info.text.clear();
      for (char16_t c = 0; c < 0x2100; ++c)
        info.text += QChar(c);
    });
    row("modes that are none", [](auto& info) {
      info.style.colorMode = -7;
      info.hAlign = info.vAlign = -1;
    });
  }
  void recordsWithoutSenseAreBounded() {
    QFETCH(tagKorviaShowTextInfo, info);
    // A small picture, so that the sanitizers take little time.
    constexpr FrameSize kSmall{480, 270};
    const TextPicture picture = painted(info, kSmall);
    QVERIFY(qint64{picture.image.width()} * picture.image.height() <= 2LL * kSmall.width * kSmall.height);
    QVERIFY(std::isfinite(picture.box.width()) && std::isfinite(picture.box.height()));
    for (int y = 0; y < picture.image.height(); ++y)
      for (int x = 0; x < picture.image.width(); ++x) {
        const QRgb pixel = reinterpret_cast<const QRgb*>(picture.image.constScanLine(y))[x];
        if (qRed(pixel) > qAlpha(pixel) || qGreen(pixel) > qAlpha(pixel) || qBlue(pixel) > qAlpha(pixel))
          QFAIL("a colour is larger than its alpha");
      }
  }

  void partsOfATextAreThoseOfTheWhole_data() {
    QTest::addColumn<int>("colorMode");
    QTest::addColumn<QString>("text");
    QTest::newRow("solid") << int{TextColorSolid} << "A long line that is drawn in parts.";
    QTest::newRow("gradient") << int{TextColorGradient} << "A long line that is drawn in parts.";
    QTest::newRow("Chinese, emoji") << int{TextColorSolid}
                                    << QString::fromUtf8("新闻 news 😀 新闻联播 😀😀 end");
    QTest::newRow("Arabic") << int{TextColorSolid} << QString::fromUtf8("أخبار اليوم من كل مكان في العالم");
  }
  void partsOfATextAreThoseOfTheWhole() {
    QFETCH(int, colorMode);
    QFETCH(QString, text);
    tagKorviaShowTextInfo info;
    info.text = text;
    info.style.colorMode = colorMode;
    info.style.outlineSize = 6;
    info.style.outlineBlur = 3;
    info.style.shadowDistanceX = 12;
    info.style.shadowBlur = 5;
    const TextPicture whole = painted(info);
    constexpr int kPart = 97;
    const int width = static_cast<int>(std::ceil(whole.box.width()));
    TextPainter painter;
    QRect drawn;
    for (int begin = 0; begin < width; begin += kPart) {
      const TextPicture part = painter.paint(info, kHd, QDateTime(), {begin, kPart});
      QCOMPARE(part.box, whole.box);
      QCOMPARE(part.part.begin, begin);
      QCOMPARE(part.part.width, kPart);
      const QRect rect(part.corner, part.image.size());
      QVERIFY((rect & drawn).isEmpty());
      drawn |= rect;
      for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
          QVERIFY2(isNear(pixelAt(part, {x, y}), pixelAt(whole, {x, y}), 1),
                   qPrintable(QString("%1, %2").arg(x).arg(y)));
    }
    // Also what overhangs at the ends.
    QVERIFY(drawn.contains(inkOf(whole)));
  }

  void aPartIsNoLargerThanAPicture() {
    tagKorviaShowTextInfo info = plainText(QString(10'000, QLatin1Char('w')));
    TextPainter painter;
    const TextPicture first = painter.paint(info, kHd, QDateTime(), {0, 1'000'000});
    QCOMPARE(first.part.width, 16384);
    QVERIFY(first.image.width() <= 16384 + 64);
    QVERIFY(first.box.width() > 200'000);
    const int last = static_cast<int>(first.box.width()) - 1000;
    const TextPicture end = painter.paint(info, kHd, QDateTime(), {last, 3000});
    QVERIFY(inkOf(end).right() > first.box.right() - 40);
    info.style.fontSize = 999;
    const TextPicture tall = painter.paint(info, kHd, QDateTime(), {0, 1'000'000});
    QVERIFY(qint64{tall.image.width()} * tall.image.height() < qint64{5} * kHd.width * kHd.height);
  }
};

QTEST_MAIN(TextPainterTest)
#include "tst_text_painter.moc"
