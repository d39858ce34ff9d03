// The textures for texts: files that readers know, and edges that continue on the other side.
#include <QImageReader>
#include <QTemporaryDir>
#include <QtTest>

#include "TextTextures.h"

using namespace korvia;

namespace {

int stepOf(QRgb a, QRgb b) {
  return qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b));
}

/// Mean difference between the columns x and x + 1, round the edge.
double stepBeside(const QImage& image, int x) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y)
    sum += stepOf(image.pixel(x, y), image.pixel((x + 1) % image.width(), y));
  return sum / image.height();
}

double largestStepInside(const QImage& image) {
  double largest = 0;
  for (int x = 0; x + 1 < image.width(); ++x)
    largest = std::max(largest, stepBeside(image, x));
  return largest;
}

}  // namespace

class TextTexturesTest : public QObject {
  Q_OBJECT

 private slots:
  void thereAreEight() { QVERIFY(textTextureNames().size() >= 8); }
  void otherNamesHaveNone() { QVERIFY(drawTextTexture(QStringLiteral("cheese")).isNull()); }

  void edgesContinue_data() {
    QTest::addColumn<QString>("name");
    for (const QString& name : textTextureNames())
      QTest::newRow(qPrintable(name)) << name;
  }
  void edgesContinue() {
    QFETCH(QString, name);
    const QImage image = drawTextTexture(name);
    QCOMPARE(image.size(), QSize(256, 256));
    const int edge = image.width() - 1;
    QVERIFY(stepBeside(image, edge) <= largestStepInside(image) * 1.05);
    const QImage turned = image.transformed(QTransform().rotate(90));
    QVERIFY(stepBeside(turned, edge) <= largestStepInside(turned) * 1.05);
  }
  void filesHoldThePictures() {
    const QTemporaryDir folder;
    QVERIFY(writeTextTextures(folder.filePath("Common/TextTexture")));
    for (const QString& name : textTextureNames()) {
      QFile file(folder.filePath("Common/TextTexture/" + name + ".tga"));
      QVERIFY(file.open(QIODevice::ReadOnly));
      QCOMPARE(file.size(), qint64{18 + 256 * 256 * 3});
      QImageReader reader(&file, "tga");
      QCOMPARE(reader.read().convertToFormat(QImage::Format_RGB32), drawTextTexture(name));
    }
  }
  void aFolderThatCannotBeMadeIsTold() {
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!writeTextTextures(folder.filePath("file/under")));
  }
};

QTEST_MAIN(TextTexturesTest)
#include "tst_text_textures.moc"
