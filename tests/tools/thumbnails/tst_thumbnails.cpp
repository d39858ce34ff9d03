// The pictures beside the built program, and what they are drawn by.
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include "ContactSheet.h"
#include "EasingPicture.h"
#include "EffectPictures.h"
#include "PictureMeasures.h"
#include "SampleScene.h"
#include "ThumbnailSet.h"
#include "transitions/TransitionCatalogue.h"

namespace {

QList<GListWidgetItemInfo> entries() {
  TransitionCatalogue catalogue;
  return *catalogue.effectList(TransitionCatalogue::kAllCatalog);
}

}  // namespace

class ThumbnailsTest : public QObject {
  Q_OBJECT

 private slots:
  void everyEntryOfTheCatalogueHasAPicture_data() {
    QTest::addColumn<QString>("path");
    for (const GListWidgetItemInfo& item : entries())
      QTest::newRow(qPrintable(QFileInfo(item.thumbPath).fileName())) << item.thumbPath;
  }

  void everyEntryOfTheCatalogueHasAPicture() {
    QFETCH(QString, path);
    const QImage picture(path);
    QCOMPARE(picture.size(), QSize(100, 84));
    QVERIFY2(structure(picture) > 15, qPrintable(QString::number(structure(picture))));
    QVERIFY(QFileInfo(path).size() < 20'000);
  }

  void noTwoEntriesLookAlike() {
    const QList<GListWidgetItemInfo> items = entries();
    QList<QImage> pictures;
    for (const GListWidgetItemInfo& item : items) {
      pictures.append(QImage(item.thumbPath));
      QCOMPARE(pictures.last().size(), QSize(100, 84));
    }
    QStringList alike;
    for (int i = 0; i < items.size(); ++i)
      for (int j = i + 1; j < items.size(); ++j)
        if (meanDifference(pictures[i], pictures[j]) < 2)
          alike.append(QString("%1 and %2").arg(items[i].id).arg(items[j].id));
    QVERIFY2(alike.isEmpty(), qPrintable(alike.join(", ")));
  }

  void noOtherPictureLiesBesideThem() {
    const QString res = QCoreApplication::applicationDirPath() + "/res/";
    QCOMPARE(QDir(res + "switchKind").entryList(QDir::Files).size(), 75);
    QCOMPARE(QDir(res + "easing").entryList(QDir::Files).size(), 29);
  }

  void everyEasingHasAPictureOfItsOwn() {
    QList<QImage> pictures;
    for (int code = 0; code < 29; ++code) {
      const QString path = TransitionCatalogue::easingThumbPath(code);
      const QImage picture(path);
      QCOMPARE(picture.size(), QSize(100, 100));
      QVERIFY(QFileInfo(path).size() < 10'000);
      QVERIFY2(!pictures.contains(picture), qPrintable(QString::number(code)));
      pictures.append(picture);
    }
  }

  void curvePassesWhereItsFormulaSays_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<QPoint>("on");
    QTest::addColumn<QPoint>("above");
    // The plot is 76 pixels wide, with its origin at (12, 88): after a half, InQuad is at 0.25 and OutCubic
    // at 0.875; after a quarter, at 0.0625 and 0.578.
    QTest::newRow("InQuad, a half") << 1 << QPoint(50, 69) << QPoint(50, 62);
    QTest::newRow("InQuad, a quarter") << 1 << QPoint(31, 83) << QPoint(31, 76);
    QTest::newRow("OutCubic, a half") << 6 << QPoint(50, 21) << QPoint(50, 16);
    QTest::newRow("OutCubic, a quarter") << 6 << QPoint(31, 44) << QPoint(31, 36);
  }

  void curvePassesWhereItsFormulaSays() {
    QFETCH(int, code);
    QFETCH(QPoint, on);
    QFETCH(QPoint, above);
    const QImage picture(TransitionCatalogue::easingThumbPath(code));
    QVERIFY2(qGray(picture.pixel(on)) > 190, qPrintable(QString::number(qGray(picture.pixel(on)))));
    QVERIFY2(qGray(picture.pixel(above)) < 80, qPrintable(QString::number(qGray(picture.pixel(above)))));
  }

  void endsOfAnEffectAreTheScenes() {
    korvia::EffectPictures pictures(QSize(100, 84));
    QVERIFY(meanDifference(pictures.picture(22, 0), korvia::drawSceneA(QSize(100, 84))) < 4);
    QVERIFY(meanDifference(pictures.picture(22, 1), korvia::drawSceneB(QSize(100, 84))) < 4);
    QVERIFY(meanDifference(pictures.picture(22, 0), pictures.picture(22, 1)) > 50);
  }

  void numberWithoutATransitionHasNoPicture() {
    korvia::EffectPictures pictures(QSize(100, 84));
    QVERIFY(pictures.picture(0, 0.5).isNull());
    QVERIFY(pictures.picture(65535, 0.5).isNull());
  }

  void folderThatCannotBeWrittenIsToldOf() {
    QTemporaryDir folder;
    QFile file(folder.filePath("res"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^failed to write : .*/res/switchKind/none.jpg$"));
    QVERIFY(!korvia::writeThumbnails(folder.path()));
  }

  void contactSheetHasARowForEachOfItsEffects() {
    const QImage sheet = korvia::drawContactSheet();
    QCOMPARE(sheet.size(), QSize(2304, 1721));
    const QSize size(112, 63);
    const QRect first(QPoint(182, 36), size);
    const QRect last(QPoint(2178, 1510), size);
    QVERIFY(meanDifference(sheet.copy(first), korvia::drawSceneA(size)) < 4);
    QVERIFY(meanDifference(sheet.copy(last), korvia::drawSceneB(size)) < 4);
    // 73 rows leave two places of the last block empty.
    const QImage below = sheet.copy(last.translated(0, 67));
    QCOMPARE(meanDifference(below, below.scaled(1, 1).scaled(size)), 0.0);
  }
};

QTEST_MAIN(ThumbnailsTest)
#include "tst_thumbnails.moc"
