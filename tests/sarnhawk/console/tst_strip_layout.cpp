// Which strips each layout of the desk has.
#include <QtTest>

#include "console/StripLayout.h"

class StripLayoutTest : public QObject {
  Q_OBJECT

 private slots:
  void layoutTable_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("total");
    QTest::addColumn<int>("media");
    QTest::addColumn<int>("stage");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << 4 << 4 << 0 << "4 Media Channel , 0 Stage Channel";
    QTest::newRow("1") << 1 << 4 << 3 << 1 << "3 Media Channel , 1 Stage Channel";
    QTest::newRow("2") << 2 << 6 << 6 << 0 << "6 Media Channel , 0 Stage Channel";
    QTest::newRow("3") << 3 << 6 << 4 << 2 << "4 Media Channel , 2 Stage Channel";
    QTest::newRow("4") << 4 << 8 << 8 << 0 << "8 Media Channel , 0 Stage Channel";
    QTest::newRow("5") << 5 << 8 << 6 << 2 << "6 Media Channel , 2 Stage Channel";
    QTest::newRow("6") << 6 << 8 << 4 << 4 << "4 Media Channel , 4 Stage Channel";
  }
  void layoutTable() {
    QFETCH(int, mode);
    const StripLayout* layout = StripLayout::find(mode);
    QVERIFY(layout);
    QTEST(layout->total, "total");
    QTEST(layout->media, "media");
    QTEST(layout->stage, "stage");
    QTEST(QString(layout->text), "text");
  }
  void otherLayoutsDoNotExist() {
    QVERIFY(!StripLayout::find(-1));
    QVERIFY(!StripLayout::find(7));
  }
};

QTEST_MAIN(StripLayoutTest)
#include "tst_strip_layout.moc"
