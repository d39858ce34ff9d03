// Words of objects, catalogs of effects, and pictures of texts.
#include <sys/stat.h>

#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include "KorviaShowUtil.h"
#include "tagKorviaShowRenderTextParam.h"

namespace {

tagKorviaShowRenderTextParam textOf(const QString& text) {
  tagKorviaShowRenderTextParam param;
  param.text = text;
  param.fontName = QStringLiteral("DejaVu Sans");
  param.fontSize = 20;
  return param;
}

/// The smallest rectangle that holds every pixel with some colour.
QRect inkOf(const QImage& image) {
  QRect ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) != 0)
        ink |= QRect(x, y, 1, 1);
  return ink;
}

int pixelsOf(const QImage& image, QRgb color) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      count += image.pixel(x, y) == color ? 1 : 0;
  return count;
}

}  // namespace

class ShowUtilTest : public QObject {
  Q_OBJECT
 private slots:
  void pathWords_data() {
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("word");
    QTest::newRow("nothing") << 0 << QString();
    QTest::newRow("first source") << 1 << QStringLiteral("media_0");
    QTest::newRow("last source") << 8 << QStringLiteral("media_7");
    QTest::newRow("past the sources") << 9 << QString();
    QTest::newRow("first channel") << 0x10 << QStringLiteral("media_0");
    QTest::newRow("last channel") << 0x17 << QStringLiteral("media_7");
    QTest::newRow("past the channels") << 0x18 << QString();
    QTest::newRow("first stage") << 0x100 << QStringLiteral("stage_0");
    QTest::newRow("last stage") << 0x103 << QStringLiteral("stage_3");
    QTest::newRow("past the stages") << 0x104 << QString();
    QTest::newRow("karaoke") << 0x1000 << QStringLiteral("karaoke");
    QTest::newRow("preview") << 0x1001 << QStringLiteral("pvm");
    QTest::newRow("program") << 0x1002 << QStringLiteral("pgm");
    QTest::newRow("negative") << -1 << QString();
  }

  void pathWords() {
    QFETCH(int, id);
    QFETCH(QString, word);
    QCOMPARE(KorviaShowUtil::toPathString(static_cast<KorviaShowObjectID>(id)), word);
  }

  void effectCatalogs_data() {
    QTest::addColumn<unsigned>("effect");
    QTest::addColumn<unsigned>("catalog");
    const auto row = [](unsigned effect, unsigned catalog) {
      QTest::newRow(qPrintable(QString::number(effect))) << effect << catalog;
    };
    row(0, 0);
    row(1, 1);
    row(20, 1);
    row(21, 0);
    row(22, 2);
    row(23, 2);
    row(24, 0);
    row(25, 3);
    row(44, 3);
    row(45, 0);
    row(46, 4);
    row(51, 4);
    row(52, 0);
    row(53, 5);
    row(60, 5);
    row(61, 0);
    row(62, 6);
    row(72, 6);
    row(73, 0);
    row(74, 7);
    row(79, 7);
    row(80, 0);
    row(65535, 0);
    row(0xFFFFFFFFU, 0);
  }

  void effectCatalogs() {
    QFETCH(unsigned, effect);
    QFETCH(unsigned, catalog);
    QCOMPARE(unsigned{KorviaShowUtil::getEffectCatalog(effect)}, catalog);
  }

  void pictureHasTheSizeAskedFor() {
    QCOMPARE(KorviaShowUtil::toImage(321, 123, textOf("Ab")).size(), QSize(321, 123));
    QCOMPARE(KorviaShowUtil::toImage(1, 1, textOf("Ab")).size(), QSize(1, 1));
    QCOMPARE(KorviaShowUtil::toImage(9000, 2, textOf("Ab")).size(), QSize(8192, 2));
    QCOMPARE(KorviaShowUtil::toImage(2, 9000, textOf("Ab")).size(), QSize(2, 8192));
    QVERIFY(KorviaShowUtil::toImage(0, 10, textOf("Ab")).isNull());
    QVERIFY(KorviaShowUtil::toImage(10, -1, textOf("Ab")).isNull());
  }

  void backgroundIsTransparentAndTextHasItsColour() {
    tagKorviaShowRenderTextParam param = textOf("III");
    param.bold = true;
    param.fontSize = 60;
    const QImage image = KorviaShowUtil::toImage(200, 100, param);
    QCOMPARE(image.pixel(199, 99), 0U);
    QVERIFY(pixelsOf(image, 0xFFFF0000) > 200);
    QVERIFY(inkOf(KorviaShowUtil::toImage(200, 100, textOf(QString()))).isNull());
  }

  void textStandsWhereItsBitsSay_data() {
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("row");
    QTest::newRow("left top") << 0x21 << 0 << 0;
    QTest::newRow("center top") << 0x24 << 1 << 0;
    QTest::newRow("right top") << 0x22 << 2 << 0;
    QTest::newRow("left middle") << 0x81 << 0 << 1;
    QTest::newRow("center middle") << 0x84 << 1 << 1;
    QTest::newRow("right bottom") << 0x42 << 2 << 2;
    QTest::newRow("no bit") << 0 << 0 << 0;
    QTest::newRow("left before right, top before bottom") << 0x63 << 0 << 0;
    QTest::newRow("center before right, middle before bottom") << 0xC6 << 1 << 1;
  }

  void textStandsWhereItsBitsSay() {
    QFETCH(int, alignment);
    QFETCH(int, column);
    QFETCH(int, row);
    for (const bool vertical : {false, true}) {
      tagKorviaShowRenderTextParam param = textOf("HH");
      param.alignment = alignment;
      param.vertical = vertical;
      const QRect ink = inkOf(KorviaShowUtil::toImage(300, 240, param));
      QVERIFY(!ink.isEmpty());
      QCOMPARE(ink.center().x() / 100, column);
      QCOMPARE(ink.center().y() / 80, row);
    }
  }

  void verticalTextRunsDownAndFromRightToLeft() {
    tagKorviaShowRenderTextParam param = textOf("HHHH");
    const QRect across = inkOf(KorviaShowUtil::toImage(300, 300, param));
    param.vertical = true;
    const QRect down = inkOf(KorviaShowUtil::toImage(300, 300, param));
    QVERIFY(across.width() > 2 * across.height());
    QVERIFY(down.height() > 2 * down.width());

    param.text = QStringLiteral("H\n.");
    param.alignment = TextAlignRight | TextAlignTop;
    const QImage columns = KorviaShowUtil::toImage(100, 40, param);
    // The first column is the right one: its letter is higher than the full stop at its left.
    QVERIFY(inkOf(columns.copy(75, 0, 25, 40)).height() > 2 * inkOf(columns.copy(50, 0, 25, 40)).height());
  }

  void wrapKeepsTheTextInside() {
    tagKorviaShowRenderTextParam param = textOf("one two three four five");
    const QImage cut = KorviaShowUtil::toImage(100, 200, param);
    QVERIFY(inkOf(cut).height() < 30);
    param.wrap = true;
    const QRect ink = inkOf(KorviaShowUtil::toImage(100, 200, param));
    QVERIFY(ink.height() > 50);
    QVERIFY(ink.right() < 100);
  }

  void lineBreaksMakeLines() {
    const int one = inkOf(KorviaShowUtil::toImage(100, 200, textOf("H"))).height();
    QVERIFY(inkOf(KorviaShowUtil::toImage(100, 200, textOf("H\nH"))).height() > 2 * one);
    QCOMPARE(KorviaShowUtil::toImage(100, 200, textOf("H\r\nH")),
             KorviaShowUtil::toImage(100, 200, textOf("H\nH")));
  }

  void boldItalicAndUnderlineShow() {
    const tagKorviaShowRenderTextParam plain = textOf("Hill");
    const QImage image = KorviaShowUtil::toImage(200, 60, plain);
    tagKorviaShowRenderTextParam bold = plain;
    bold.bold = true;
    QVERIFY(pixelsOf(KorviaShowUtil::toImage(200, 60, bold), 0) < pixelsOf(image, 0));
    tagKorviaShowRenderTextParam italic = plain;
    italic.italic = true;
    QVERIFY(KorviaShowUtil::toImage(200, 60, italic) != image);
    tagKorviaShowRenderTextParam underline = plain;
    underline.underline = true;
    QVERIFY(inkOf(KorviaShowUtil::toImage(200, 60, underline)).bottom() > inkOf(image).bottom());
  }

  void outlineSurroundsTheTextAndStaysInside() {
    tagKorviaShowRenderTextParam param = textOf("H");
    param.fontSize = 60;
    param.outline = true;
    param.outlineSize = 4;
    param.outlineColor = 0xFF0000FF;
    const QImage image = KorviaShowUtil::toImage(200, 100, param);
    QVERIFY(pixelsOf(image, 0xFF0000FF) > 100);
    QVERIFY(pixelsOf(image, 0xFFFF0000) > 100);
    QVERIFY(inkOf(image).left() >= 0);
    param.outline = false;
    const QImage plain = KorviaShowUtil::toImage(200, 100, param);
    QCOMPARE(pixelsOf(plain, 0xFF0000FF), 0);
    QVERIFY(inkOf(image).width() >= inkOf(plain).width() + 7);
  }

  void gradientFollowsItsAngle_data() {
    QTest::addColumn<int>("angle");
    QTest::addColumn<bool>("across");
    QTest::addColumn<bool>("redFirst");
    QTest::newRow("left to right") << 0 << true << true;
    QTest::newRow("top to bottom") << 90 << false << true;
    QTest::newRow("right to left") << 180 << true << false;
    QTest::newRow("bottom to top") << 270 << false << false;
    QTest::newRow("more than a turn") << 450 << false << true;
    QTest::newRow("backwards") << -90 << false << false;
  }

  void gradientFollowsItsAngle() {
    QFETCH(int, angle);
    QFETCH(bool, across);
    QFETCH(bool, redFirst);
    tagKorviaShowRenderTextParam param = textOf("HH");
    param.fontSize = 80;
    param.gradientAngle = angle;
    param.gradientBeginColor = 0xFFFF0000;
    param.gradientEndColor = 0xFF0000FF;
    const QImage image = KorviaShowUtil::toImage(200, 120, param);
    const QRect ink = inkOf(image);
    const QRect head = across ? QRect(ink.left(), ink.top(), ink.width() / 4, ink.height())
                              : QRect(ink.left(), ink.top(), ink.width(), ink.height() / 4);
    qint64 red = 0;
    qint64 blue = 0;
    for (int y = head.top(); y <= head.bottom(); ++y) {
      for (int x = head.left(); x <= head.right(); ++x) {
        red += qRed(image.pixel(x, y));
        blue += qBlue(image.pixel(x, y));
      }
    }
    QVERIFY(red + blue > 0);
    QCOMPARE(red > 2 * blue, redFirst);
    QCOMPARE(blue > 2 * red, !redFirst);
  }

  void strangeValuesDoNoHarm() {
    tagKorviaShowRenderTextParam param = textOf(QString(200000, QLatin1Char('x')));
    param.wrap = true;
    QCOMPARE(KorviaShowUtil::toImage(320, 180, param).size(), QSize(320, 180));
    param.vertical = true;
    QCOMPARE(KorviaShowUtil::toImage(320, 180, param).size(), QSize(320, 180));
    param.text = QStringLiteral("x");
    for (const int size : {-5, 0, 2147483647}) {
      param.fontSize = size;
      param.outline = true;
      param.outlineSize = size;
      param.gradientAngle = size;
      QCOMPARE(KorviaShowUtil::toImage(32, 18, param).size(), QSize(32, 18));
    }
    param = textOf(QString(QChar(0xD800)) + QChar(0) + QChar(0xFFFF));
    QCOMPARE(KorviaShowUtil::toImage(32, 18, param).size(), QSize(32, 18));
  }

  void textFiles_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QByteArray("two\nlines") << QString("two\nlines");
    QTest::newRow("empty") << QByteArray() << QString();
    const QString word = QString::fromUtf8("\u00e4\u4e2d");
    QTest::newRow("locale") << word.toLocal8Bit() << QString::fromLocal8Bit(word.toLocal8Bit());
    QTest::newRow("utf-8 with mark") << "\xef\xbb\xbf" + word.toUtf8() << word;
    QTest::newRow("utf-16 with mark") << QByteArray::fromHex("fffee4002d4e") << word;
    QTest::newRow("utf-16 of the other order") << QByteArray::fromHex("feff00e44e2d") << word;
    QTest::newRow("longest") << QByteArray(4 * 1024 * 1024, 'a') << QString(4 * 1024 * 1024, 'a');
  }

  void textFiles() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    file.close();
    QString read = "before";
    QString reason;
    QVERIFY(KorviaShowUtil::readTextFile(file.fileName(), read, reason));
    QVERIFY(read == text);
  }

  void textFilesThatAreRefused() {
    QTemporaryDir folder;
    const QString path = folder.filePath("long.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4 * 1024 * 1024 + 1, 'a'));
    file.close();
    const QByteArray fifo = QFile::encodeName(folder.filePath("fifo"));
    QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
    const QVector<std::pair<QString, QString>> refused{{path, "longer than 4 MiB"},
                                                       {folder.filePath("missing.txt"), "no such file"},
                                                       {folder.path(), "is no file"},
                                                       {folder.filePath("fifo"), "is no file"}};
    for (const auto& [name, expected] : refused) {
      QString text = "before";
      QString reason;
      QVERIFY(!KorviaShowUtil::readTextFile(name, text, reason));
      QCOMPARE(reason, expected);
      QCOMPARE(text, QString());
    }
  }
};

QTEST_MAIN(ShowUtilTest)
#include "tst_show_util.moc"
