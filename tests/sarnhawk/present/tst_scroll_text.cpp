// When a label scrolls, and from where.
#include <QtTest>

#include "present/ScrollText.h"

class ScrollTextTest : public QObject {
  Q_OBJECT

 private slots:
  void textAsWideAsItsPlaceStandsStill() {
    ScrollText label;
    const QString text = QStringLiteral("a subtitle");
    const int limit = label.fontMetrics().horizontalAdvance(text) + label.height() / 3;
    label.resize(limit, label.height());
    label.setText(text);
    label.grab();
    QVERIFY(!label.isScrolling());
    label.resize(limit - 1, label.height());
    label.grab();
    QVERIFY(label.isScrolling());
  }

  void scrollPausesFor32StepsAndGoesRound() {
    ScrollText label;
    label.resize(70, label.height());
    label.setText(QString(40, QLatin1Char('m')));
    label.grab();
    QCOMPARE(label.position(), -64);
    for (int step = 0; step < 32; ++step)
      label.timer_timeout();
    QCOMPARE(label.position(), 0);
    const int whole = label.fontMetrics().horizontalAdvance(label.text() + QString(6, QLatin1Char(' ')));
    for (int moved = 0; moved < whole; moved += 2)
      label.timer_timeout();
    QCOMPARE(label.position(), whole % 2);
  }

  void edgesFade() {
    ScrollText label;
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::white);
    label.setPalette(palette);
    label.resize(200, label.height());
    label.setText(QString(100, QChar(0x2588)));  // full blocks
    const auto alphaAt = [&label](int x) {
      QImage image(label.size(), QImage::Format_ARGB32_Premultiplied);
      image.fill(Qt::transparent);
      label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
      return qAlpha(image.pixel(x, image.height() / 2));
    };
    for (int i = 1; i <= 15; ++i)
      QVERIFY2(std::abs(alphaAt(200 - i) - i * 16) <= 1, QByteArray::number(i));
    QCOMPARE(alphaAt(184), 255);
    // In the pause the beginning of the text is whole; its edge fades in the last 8 pixels of it.
    QCOMPARE(alphaAt(12), 255);
    for (int step = 0; step < 28; ++step)
      label.timer_timeout();
    QCOMPARE(label.position(), -8);
    QCOMPARE(alphaAt(12), 255);
    for (int step = 0; step < 2; ++step)
      label.timer_timeout();
    const int half = alphaAt(12);
    QVERIFY2(std::abs(half - (255 + 13 * 16) / 2) <= 2, QByteArray::number(half));
    for (int step = 0; step < 20; ++step)
      label.timer_timeout();
    for (int i = 1; i <= 15; ++i)
      QVERIFY2(std::abs(alphaAt(i - 1) - i * 16) <= 1, QByteArray::number(i));
  }

  void aNarrowLabelDoesNotFade() {
    ScrollText label;
    label.resize(64, label.height());
    label.setText(QString(100, QChar(0x2588)));
    QImage image(label.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    label.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(qAlpha(image.pixel(63, image.height() / 2)), 255);
  }

  void theSeparatorStandsBetween() {
    ScrollText label;
    label.resize(70, label.height());
    label.setText(QString(40, QLatin1Char('m')));
    QCOMPARE(label.separator(), QString(6, QLatin1Char(' ')));
    label.timer_timeout();
    label.setSeparator(QStringLiteral("***"));
    QCOMPARE(label.position(), -64);  // it begins anew
    QCOMPARE(label.separator(), QStringLiteral("***"));
  }

  void itMovesByItself() {
    ScrollText label;
    label.resize(70, label.height());
    label.setText(QString(40, QLatin1Char('m')));
    QTRY_VERIFY(label.position() > -60);
  }

  void aLineBreakIsABlank_data() {
    QTest::addColumn<QString>("between");
    QTest::newRow("line feed") << "\n";
    QTest::newRow("carriage return") << "\r";
    QTest::newRow("both") << "\r\n";
    QTest::newRow("tab") << "\t";
    QTest::newRow("separator") << QString(QChar(QChar::LineSeparator));
  }
  void aLineBreakIsABlank() {
    QFETCH(QString, between);
    ScrollText broken;
    ScrollText blank;
    for (ScrollText* label : {&broken, &blank})
      label->resize(200, label->height());
    broken.setText("first" + between + "second");
    blank.setText("first second");
    QCOMPARE(broken.text(), "first" + between + "second");
    QCOMPARE(broken.grab().toImage(), blank.grab().toImage());
  }
};

QTEST_MAIN(ScrollTextTest)
#include "tst_scroll_text.moc"
