// The font table of the machine.
#include <QFontDatabase>
#include <QtTest>

#include "ZRCUtil.h"

class ZRCUtilTest : public QObject {
  Q_OBJECT

 private slots:
  void listsScalableFontsWithTheirStyles() {
    tagGSystemTTFFontInfo info;
    info.families = QStringList{"left over"};
    ZRCUtil::enumSystemTTFFont(info);
    if (QFontDatabase().families().isEmpty())
      QSKIP("no font is installed");
    QVERIFY(!info.families.isEmpty());
    QVERIFY(!info.families.contains("left over"));
    QCOMPARE(info.styles.size(), info.families.size());
    for (const QString& family : std::as_const(info.families)) {
      QVERIFY2(QFontDatabase().isScalable(family), qPrintable(family));
      QVERIFY2(!info.styles.value(family).isEmpty(), qPrintable(family));
    }
  }

  void tableIsSorted() {
    tagGSystemTTFFontInfo info;
    ZRCUtil::enumSystemTTFFont(info);
    for (int i = 1; i < info.families.size(); ++i)
      QVERIFY2(info.families[i - 1].compare(info.families[i], Qt::CaseInsensitive) <= 0,
               qPrintable(info.families[i]));
  }
};

QTEST_MAIN(ZRCUtilTest)
#include "tst_ZRCUtil.moc"
