// The pictures of the presets and animations of texts beside the built program, and what they are drawn by.
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QtTest>

#include "AnimationPictures.h"
#include "AnimationSheet.h"
#include "KorviaShowTextStylePreset.h"
#include "PictureMeasures.h"
#include "PresetPictures.h"
#include "PresetSheet.h"
#include "ThumbnailSet.h"
#include "engine/items/ItemAnimation.h"
#include "present/ItemCatalogue.h"

using namespace korvia;

namespace {

const QSize kPresetSize(128, 128);
const QSize kAnimationSize(120, 120);

QString resource(const QString& path) {
  return QStringLiteral("%1/ProductInfo-%2/res/%3")
      .arg(QCoreApplication::applicationDirPath(), kPicturedProgram, path);
}

QStringList pathsOf(const QList<GListWidgetItemInfo>& tiles) {
  QStringList paths;
  for (const GListWidgetItemInfo& tile : tiles)
    paths.append(tile.thumbPath);
  return paths;
}

QStringList presetPaths() {
  return pathsOf(ItemCatalogue(kPicturedProgram).textPresets());
}

QStringList animationPaths() {
  const ItemCatalogue catalogue(kPicturedProgram);
  return pathsOf(catalogue.entrances(ItemCatalogue::Masks::Without) +
                 catalogue.exits(ItemCatalogue::Masks::Without));
}

/// The pairs of pictures that are less than `least` apart.
QStringList pairsAlike(const QStringList& paths, double least) {
  QList<QImage> pictures;
  for (const QString& path : paths)
    pictures.append(QImage(path));
  QStringList alike;
  for (int i = 0; i < paths.size(); ++i)
    for (int j = i + 1; j < paths.size(); ++j) {
      const double difference = meanDifference(pictures[i], pictures[j]);
      if (difference < least)
        alike.append(QString("%1 and %2: %3")
                         .arg(QFileInfo(paths[i]).baseName(), QFileInfo(paths[j]).baseName())
                         .arg(difference));
    }
  return alike;
}

int distance(QRgb a, QRgb b) {
  return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
}

/// Where the picture differs from the other one, as a mean of places, in pixels from the middle.
QPointF middleOfDifference(const QImage& a, const QImage& b) {
  double sum = 0;
  QPointF middle;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const int weight = distance(a.pixel(x, y), b.pixel(x, y));
      sum += weight;
      middle += weight * QPointF(x, y);
    }
  return middle / sum - QPointF(a.width() - 1, a.height() - 1) / 2;
}

int signOf(double value) {
  return value < -2 ? -1 : value > 2 ? 1 : 0;
}

/// The column at the left edge over the whole picture: what lies behind the letters of a preset's tile.
QImage backgroundOf(const QImage& tile) {
  return tile.copy(0, 0, 1, tile.height()).scaled(tile.size());
}

/// The part of the opaque pixels that have the most frequent colour.
double shareOfOneColor(const QImage& image) {
  QHash<QRgb, int> counts;
  int opaque = 0;
  int most = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) == 255) {
        ++opaque;
        most = std::max(most, ++counts[image.pixel(x, y)]);
      }
  return static_cast<double>(most) / opaque;
}

}  // namespace

class TitlePicturesTest : public QObject {
  Q_OBJECT

 private:
  PresetPictures presets_;

  void compareNumberOfPictures(const QString& folder, int count) {
    QCOMPARE(QDir(resource(folder)).entryList(QDir::Files).size(), count);
  }

 private slots:
  void everyPresetHasAPicture_data() {
    QTest::addColumn<QString>("path");
    for (const QString& path : presetPaths())
      QTest::newRow(qPrintable(QFileInfo(path).baseName())) << path;
  }
  void everyPresetHasAPicture() {
    QFETCH(QString, path);
    const QImage picture(path);
    QCOMPARE(picture.size(), kPresetSize);
    QVERIFY2(structure(picture) > 15, qPrintable(QString::number(structure(picture))));
    QVERIFY(QFileInfo(path).size() < 20'000);
  }
  void everyAnimationHasAPicture_data() {
    QTest::addColumn<QString>("path");
    for (const QString& path : animationPaths())
      QTest::newRow(qPrintable(path.section('/', -2))) << path;
  }
  void everyAnimationHasAPicture() {
    QFETCH(QString, path);
    const QImage picture(path);
    QCOMPARE(picture.size(), kAnimationSize);
    QVERIFY2(structure(picture) > 10, qPrintable(QString::number(structure(picture))));
    QVERIFY(QFileInfo(path).size() < 20'000);
  }
  void noOtherPictureLiesBesideThem() {
    compareNumberOfPictures("subtitleStyle", 31);
    compareNumberOfPictures("overlayAni/entrance", 17);
    compareNumberOfPictures("overlayAni/exit", 17);
  }
  void noTwoPresetsLookAlike() {
    const QStringList alike = pairsAlike(presetPaths(), 2);
    QVERIFY2(alike.isEmpty(), qPrintable(alike.join(", ")));
  }
  void noTwoAnimationsLookAlike() {
    const QStringList alike = pairsAlike(animationPaths(), 2);
    QVERIFY2(alike.isEmpty(), qPrintable(alike.join(", ")));
  }

  void namesAreThoseOfThePresets() {
    QCOMPARE(PresetPictures::kCount, 31);
    QCOMPARE(presetPaths().at(TextStyleSolidShadowBlue), resource("subtitleStyle/solid_shadow_blue.jpg"));
    QCOMPARE(presetPaths().at(TextStyleOutlineWhite), resource("subtitleStyle/outline_white.jpg"));
    QCOMPARE(presetPaths().at(TextStyleTexture0004), resource("subtitleStyle/texture_0004.jpg"));
  }
  void lettersHaveTheColorOfTheName_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QRgb>("color");
    for (const char* kind : {"solid", "solid_shadow", "solid_outline", "outline"}) {
      const QString path = resource("subtitleStyle/%1_%2.jpg").arg(kind);
      QTest::newRow(qPrintable(kind + QString(" red"))) << path.arg("red") << QRgb(0xffd81e28);
      QTest::newRow(qPrintable(kind + QString(" green"))) << path.arg("green") << QRgb(0xff27da56);
      QTest::newRow(qPrintable(kind + QString(" blue"))) << path.arg("blue") << QRgb(0xff1f4fe0);
    }
  }
  void lettersHaveTheColorOfTheName() {
    QFETCH(QString, path);
    QFETCH(QRgb, color);
    const QImage picture(path);
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.width(); ++x)
        count += distance(picture.pixel(x, y), color) < 60;
    QVERIFY2(count > 300, qPrintable(QString::number(count)));
  }
  void lettersAreInTheMiddle_data() {
    QTest::addColumn<int>("preset");
    // Without shadows to the side.
    for (int preset = TextStyleSolidOutlineWhite; preset <= TextStyleOutlineBlue; ++preset)
      QTest::addRow("%d", preset) << preset;
  }
  void lettersAreInTheMiddle() {
    QFETCH(int, preset);
    const QImage tile = presets_.tile(preset, kPresetSize);
    const QPointF middle = middleOfDifference(tile, backgroundOf(tile));
    QVERIFY2(std::abs(middle.x()) < 6 && std::abs(middle.y()) < 6,
             qPrintable(QString("%1, %2").arg(middle.x()).arg(middle.y())));
  }
  void texturesFillTheirLetters() {
    QVERIFY(presets_.hasTextures());
    for (int preset = TextStyleTexture0001; preset <= TextStyleTexture0004; ++preset)
      QVERIFY(shareOfOneColor(presets_.text(preset, "Aa", 2).image) < 0.3);
    QVERIFY(shareOfOneColor(presets_.text(TextStyleSolidRed, "Aa", 2).image) > 0.5);
  }

  void picturesTellTheDirection_data() {
    QTest::addColumn<QPoint>("direction");
    QTest::newRow("entrance/Appear") << QPoint(0, 0);
    QTest::newRow("entrance/FlyInFromTop") << QPoint(0, -1);
    QTest::newRow("entrance/FlyInFromBottom") << QPoint(0, 1);
    QTest::newRow("entrance/FlyInFromLeft") << QPoint(-1, 0);
    QTest::newRow("entrance/FlyInFromRight") << QPoint(1, 0);
    QTest::newRow("entrance/FlyInFromTopLeft") << QPoint(-1, -1);
    QTest::newRow("entrance/FlyInFromTopRight") << QPoint(1, -1);
    QTest::newRow("entrance/FloatFromTopLeft") << QPoint(-1, -1);
    QTest::newRow("entrance/FloatFromTopRight") << QPoint(1, -1);
    QTest::newRow("entrance/Glide") << QPoint(-1, 0);
    QTest::newRow("entrance/Sling") << QPoint(1, -1);
    QTest::newRow("entrance/Zoom") << QPoint(0, 0);
    QTest::newRow("entrance/Ascend") << QPoint(0, 1);
    QTest::newRow("entrance/Descend") << QPoint(0, -1);
    QTest::newRow("exit/Appear") << QPoint(0, 0);
    QTest::newRow("exit/FlyInFromTop") << QPoint(0, -1);
    QTest::newRow("exit/FlyInFromBottom") << QPoint(0, 1);
    QTest::newRow("exit/FlyOutToLeft") << QPoint(-1, 0);
    QTest::newRow("exit/FlyOutToRight") << QPoint(1, 0);
    QTest::newRow("exit/FlyOutToTopLeft") << QPoint(-1, -1);
    QTest::newRow("exit/FlyOutToTopRight") << QPoint(1, -1);
    QTest::newRow("exit/FloatFromTopLeft") << QPoint(-1, -1);
    QTest::newRow("exit/FloatFromTopRight") << QPoint(1, -1);
    QTest::newRow("exit/Glide") << QPoint(-1, 0);
    QTest::newRow("exit/Magnify") << QPoint(0, 0);
    QTest::newRow("exit/Sling") << QPoint(1, -1);
    QTest::newRow("exit/Ascend") << QPoint(0, -1);
    QTest::newRow("exit/Descend") << QPoint(0, 1);
  }
  void picturesTellTheDirection() {
    QFETCH(QPoint, direction);
    const QString name = QTest::currentDataTag();
    const QImage picture(resource("overlayAni/" + name + ".jpg"));
    QCOMPARE(picture.size(), kAnimationSize);
    AnimationPictures pictures(kAnimationSize);
    const QImage empty = name.startsWith("exit") ? pictures.picture(kFirstExit, 1) : pictures.picture(0, 0);
    const QPointF middle = middleOfDifference(picture, empty);
    QVERIFY2(QPoint(signOf(middle.x()), signOf(middle.y())) == direction,
             qPrintable(QString("%1, %2").arg(middle.x()).arg(middle.y())));
  }
  void earlierPlatesAreFainter() {
    AnimationPictures pictures(kAnimationSize);
    const QImage tile = pictures.tile(2);
    // FlyInFromBottom ends with its plate from row 43 to 77. Earlier plates look out from under it.
    const QList<int> rows{70, 80, 101};
    for (int i = 1; i < rows.size(); ++i)
      QVERIFY2(qGray(tile.pixel(80, rows[i])) + 10 < qGray(tile.pixel(80, rows[i - 1])),
               qPrintable(QString::number(rows[i])));
  }
  void plateOfAnExitThatAppearsIsGone() {
    AnimationPictures pictures(kAnimationSize);
    QVERIFY(qGray(pictures.tile(0).pixel(80, 70)) > 230);
    QVERIFY(qGray(pictures.tile(kFirstExit).pixel(80, 70)) < 180);
  }
  void pictureFollowsTheAnimation() {
    AnimationPictures pictures(kAnimationSize);
    const QImage empty = pictures.picture(3, 0);
    // Halfway in from the left, the plate is 45 pixels from its place, and 15 of its 60 are out of sight.
    const QPointF halfway = middleOfDifference(pictures.picture(3, 0.5), empty);
    QVERIFY2(std::abs(halfway.x() + 37) < 4, qPrintable(QString::number(halfway.x())));
    const QPointF arrived = middleOfDifference(pictures.picture(3, 1), empty);
    QVERIFY2(std::abs(arrived.x()) < 4, qPrintable(QString::number(arrived.x())));
  }

  void presetSheetHasARowForEachPreset() {
    const QImage sheet = drawPresetSheet();
    QCOMPARE(sheet.size(), QSize(1738, 1176));
    const QSize cell(220, 68);
    const QImage last(sheet.copy(QRect(QPoint(1504, 14 + 14 * 72), cell)));
    QVERIFY(structure(last) > 15);
    // 31 rows leave one place of the last block empty.
    const QImage below = sheet.copy(QRect(QPoint(1504, 14 + 15 * 72), cell));
    QImage window(below.size(), below.format());
    window.fill(below.pixel(0, 0));
    QCOMPARE(below, window);
  }
  void animationSheetHasARowForEachAnimation() {
    const QImage sheet = drawAnimationSheet();
    QCOMPARE(sheet.size(), QSize(1538, 1185));
    const QSize size(112, 63);
    AnimationPictures pictures(size);
    const auto cell = [&](int block, int row, int column) {
      return sheet.copy(QRect(QPoint(182 + block * 766 + column * 116, 36 + row * 67), size));
    };
    QCOMPARE(cell(0, 0, 0), pictures.picture(0, 0));
    QCOMPARE(cell(0, 12, 2), pictures.picture(12, 0.5));
    QCOMPARE(cell(1, 16, 3), pictures.picture(42, 0.75));
  }
};

QTEST_MAIN(TitlePicturesTest)
#include "tst_title_pictures.moc"
