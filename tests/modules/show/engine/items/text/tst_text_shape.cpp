// Boxes, lines and alignment of texts.
#include <QtTest>

#include "engine/items/text/FontChoice.h"
#include "engine/items/text/TextShape.h"

using namespace korvia;

namespace {

constexpr TextLimits kWide{16384};

QFont font() {
  return chooseFont("DejaVu Sans", 40);
}

TextShape shapeOf(const QString& text, const TextBox& box = {}) {
  return {text, font(), box, kWide};
}

}  // namespace

Q_DECLARE_METATYPE(TextSide)

class TextShapeTest : public QObject {
  Q_OBJECT

 private slots:
  void aMeasuredBoxHoldsTheLines() {
    const TextShape shape = shapeOf("one\nlonger line");
    QCOMPARE(shape.box(), shape.lines());
    QVERIFY(qAbs(shape.box().center().x()) < 0.01);
    QVERIFY(qAbs(shape.box().center().y()) < 0.01);
    const double width = QFontMetricsF(font()).horizontalAdvance("longer line");
    QVERIFY(qAbs(shape.box().width() - width) < width * 0.02);
    QVERIFY(qAbs(shape.box().height() - 2 * shapeOf("one").box().height()) < 0.1);
  }
  void emptyLinesTakeTheirPlace() {
    QVERIFY(qAbs(shapeOf("a\n\nb").box().height() - 3 * shapeOf("a").box().height()) < 0.1);
  }
  void aBoxBreaksLines() {
    TextBox box;
    box.width = 200;
    const TextShape shape = shapeOf("some words that need several lines", box);
    QCOMPARE(shape.box().width(), 200.0);
    QVERIFY(shape.lines().width() <= 200.5);
    QVERIFY(shape.lines().height() > 2.5 * shapeOf("a").lines().height());
  }
  void aWordThatIsTooLongIsBrokenInside() {
    TextBox box;
    box.width = 120;
    QVERIFY(shapeOf("incomprehensibilities", box).lines().width() <= 120.5);
  }
  void linesAreAligned_data() {
    QTest::addColumn<TextSide>("side");
    QTest::addColumn<QString>("text");
    for (const QString& text : {QStringLiteral("word"), QStringLiteral("\u05E9\u05DC\u05D5\u05DD")}) {
      const char* script = text.at(0).unicode() < 128 ? "latin" : "hebrew";
      QTest::addRow("%s left", script) << TextSide::Begin << text;
      QTest::addRow("%s centre", script) << TextSide::Middle << text;
      QTest::addRow("%s right", script) << TextSide::End << text;
    }
  }
  void linesAreAligned() {
    QFETCH(TextSide, side);
    QFETCH(QString, text);
    const TextBox box{600, 300, side, side};
    const TextShape shape = shapeOf(text, box);
    const QRectF lines = shape.lines();
    QVERIFY(lines.width() > 20 && lines.width() < 300);
    const double before = side == TextSide::Begin ? 0 : side == TextSide::Middle ? 0.5 : 1;
    QVERIFY(qAbs(lines.left() - (-300 + (600 - lines.width()) * before)) < 0.1);
    QVERIFY(qAbs(lines.top() - (-150 + (300 - lines.height()) * before)) < 0.1);
  }
  void capitalsReachFromTheCapTopToTheBaseline() {
    const TextShape shape = shapeOf("H");
    QVERIFY(shape.capTop() > shape.box().top());
    QVERIFY(shape.lastBaseline() < shape.box().bottom());
    QVERIFY(qAbs(shape.lastBaseline() - shape.capTop() - QFontMetricsF(font()).capHeight()) < 0.1);
  }
  void longLinesAreCut() {
    const TextShape shape(QString(20000, QLatin1Char('w')), font(), {}, {3000});
    QVERIFY(shape.lines().width() <= 3000);
    QVERIFY(shape.lines().width() > 2900);
  }
  void manyLinesAreCut() {
    const double height = shapeOf("a").lines().height();
    QVERIFY(shapeOf(QString("a\n").repeated(8000)).lines().height() < 513 * height);
    TextBox narrow;
    narrow.width = 1;
    QVERIFY(shapeOf(QString(16000, QLatin1Char('w')), narrow).lines().height() < 513 * height);
  }
};

QTEST_MAIN(TextShapeTest)
#include "tst_text_shape.moc"
