// Names of fonts, installed or not.
#include <QFontInfo>
#include <QRawFont>
#include <QtTest>

#include "engine/items/text/FontChoice.h"

using namespace korvia;

class FontChoiceTest : public QObject {
  Q_OBJECT

 private slots:
  void aMissingFontBecomesNoto() {
    const QFont font = chooseFont("Microsoft YaHei Bold & Microsoft YaHei UI Bold", 40);
    QCOMPARE(font.families().constFirst(), QString("Noto Sans CJK SC"));
    QCOMPARE(QFontInfo(font).family(), QString("Noto Sans CJK SC"));
    QCOMPARE(font.weight(), static_cast<int>(QFont::Bold));
    QCOMPARE(font.pixelSize(), 40);
  }
  void theWeightOfAMissingFontIsKept() {
    QCOMPARE(chooseFont("Nowhere Sans", 40).weight(), static_cast<int>(QFont::Normal));
    QCOMPARE(chooseFont("Nowhere Light Italic", 40).weight(), static_cast<int>(QFont::Light));
    QVERIFY(chooseFont("Nowhere Light Italic", 40).italic());
  }
  void anInstalledFontIsTaken() {
    QCOMPARE(chooseFont("DejaVu Sans", 40).families().constFirst(), QString("DejaVu Sans"));
    QCOMPARE(chooseFont("dejavu sans", 40).families().constFirst(), QString("DejaVu Sans"));
    const QFont bold = chooseFont("  DejaVu  Sans Bold", 40);
    QCOMPARE(bold.families().constFirst(), QString("DejaVu Sans"));
    QCOMPARE(bold.weight(), static_cast<int>(QFont::Bold));
  }
  void theFirstInstalledOfSeveralIsTaken() {
    QCOMPARE(chooseFont("Nowhere Bold & DejaVu Sans", 40).families().constFirst(), QString("DejaVu Sans"));
  }
  void oddNamesAreNoCrash_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << QString("   ");
    QTest::newRow("only a style") << QString("Bold");
    QTest::newRow("joints") << QString(" &  & ");
    QTest::newRow("long") << QString(1 << 20, QLatin1Char('B'));
    QTest::newRow("many joints") << QString("x & ").repeated(100000);
  }
  void oddNamesAreNoCrash() {
    QFETCH(QString, name);
    QCOMPARE(chooseFont(name, 10).families().constFirst(), QString("Noto Sans CJK SC"));
  }
};

QTEST_MAIN(FontChoiceTest)
#include "tst_font_choice.moc"
