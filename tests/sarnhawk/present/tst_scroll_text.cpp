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
};

QTEST_MAIN(ScrollTextTest)
#include "tst_scroll_text.moc"
