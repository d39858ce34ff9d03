// How a caption is fitted into its strip.
#include <QtTest>

#include "present/TileCaption.h"

class TileCaptionTest : public QObject {
  Q_OBJECT

 private slots:
  void shortTextIsOneLine() {
    QCOMPARE(lines("Left - 1", "Left - 1", 2), QStringList("Left - 1"));
    QCOMPARE(lines("", "a", 2), QStringList(""));
  }

  void longTextBreaksInsideAndBetweenItsWords_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("room");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("at a capital") << "VenetianBlinds - 18"
                                  << "VenetianBli" << QStringList{"Venetian", "Blinds - 18"};
    QTest::newRow("as late as possible") << "GrowablePoissonDisk - 57"
                                         << "GrowablePoisson" << QStringList{"GrowablePoisson", "Disk - 57"};
    QTest::newRow("at a space") << "evening news"
                                << "evening n" << QStringList{"evening", "news"};
    QTest::newRow("number stays with its dash") << "Blinds - 16"
                                                << "Blinds -" << QStringList{"Blinds", "- 16"};
    QTest::newRow("after a digit") << "Take2Now"
                                   << "Take2N" << QStringList{"Take2", "Now"};
  }
  void longTextBreaksInsideAndBetweenItsWords() {
    QFETCH(QString, text);
    QFETCH(QString, room);
    QFETCH(QStringList, expected);
    QCOMPARE(lines(text, room, 2), expected);
  }

  void whatDoesNotFitLosesItsMiddle() {
    const QStringList one = lines("GrowablePoissonDisk - 57", "Growable Disk", 1);
    QCOMPARE(one.size(), 1);
    QVERIFY2(one[0].startsWith("Grow") && one[0].endsWith("57"), qPrintable(one[0]));
    const QStringList unbroken = lines("averyveryverylongfilename", "averyver", 2);
    QCOMPARE(unbroken.size(), 1);
    QVERIFY2(unbroken[0].startsWith("av") && unbroken[0].endsWith("e"), qPrintable(unbroken[0]));
    const QStringList two = lines("RandomCircleRevealAgain - 68", "RandomCirc", 2);
    QCOMPARE(two.size(), 2);
    QCOMPARE(two[0], QString("Random"));
    QVERIFY2(two[1].startsWith("Cir") && two[1].endsWith("68"), qPrintable(two[1]));
  }

  void everyLineFits() {
    for (int width = 0; width < 200; width += 7) {
      for (const QString& line : TileCaption::linesOf("GrowablePoissonDisk - 57", metrics(), width, 2))
        QVERIFY2(metrics().horizontalAdvance(line) <= qMax(width, metrics().horizontalAdvance(QChar(0x2026))),
                 qPrintable(QString("%1 : %2").arg(width).arg(line)));
    }
  }

  void stripTakesAThirdOfTheTileAtMost() {
    TileCaption caption(nullptr);
    caption.fitTile(160);
    const int two = caption.height();
    caption.fitTile(60);
    const int one = caption.height();
    QCOMPARE(two, 2 * one);
    caption.fitTile(6 * one);
    QCOMPARE(caption.height(), two);
    caption.fitTile(6 * one - 1);
    QCOMPARE(caption.height(), one);
  }

 private:
  static QFontMetrics metrics() {
    QFont font;
    font.setPointSize(8);
    font.setBold(true);
    return QFontMetrics(font);
  }
  /// Lines of a text in a strip as wide as `room`.
  static QStringList lines(const QString& text, const QString& room, int lineCount) {
    return TileCaption::linesOf(text, metrics(), metrics().horizontalAdvance(room), lineCount);
  }
};

QTEST_MAIN(TileCaptionTest)
#include "tst_tile_caption.moc"
