// Textures from files, good and bad.
#include <QTemporaryDir>
#include <QtTest>

#include "engine/items/text/TexturePicture.h"
#include "support/LogLines.h"

using namespace korvia;

namespace {

constexpr char kPlain = 2;
constexpr char kRunLength = 10;

QByteArray targaHeader(char kind, int width, int height, char bits) {
  QByteArray bytes(18, 0);
  bytes[2] = kind;
  bytes[12] = static_cast<char>(width & 255);
  bytes[13] = static_cast<char>(width >> 8);
  bytes[14] = static_cast<char>(height & 255);
  bytes[15] = static_cast<char>(height >> 8);
  bytes[16] = bits;
  bytes[17] = 0x20;
  return bytes;
}

}  // namespace

class TexturePictureTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<QTemporaryDir> folder_;

  QString written(const QString& name, const QByteArray& content) {
    const QString path = folder_->filePath(name);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path : QString();
  }

 private slots:
  void init() { folder_ = std::make_unique<QTemporaryDir>(); }
  void cleanup() { folder_.reset(); }

  void readsPlainTarga() {
    const QByteArray pixels("\x10\x20\x30\x40\x50\x60", 6);
    TexturePicture texture;
    const QImage image = texture.picture(written("a.tga", targaHeader(kPlain, 2, 1, 24) + pixels));
    QCOMPARE(image.size(), QSize(2, 1));
    QCOMPARE(image.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(image.pixel(0, 0), qRgb(0x30, 0x20, 0x10));
    QCOMPARE(image.pixel(1, 0), qRgb(0x60, 0x50, 0x40));
  }
  void readsRunLengths() {
    const QByteArray run("\x83\x10\x20\x30", 4);
    TexturePicture texture;
    const QImage image = texture.picture(written("a.tga", targaHeader(kRunLength, 4, 1, 24) + run));
    QCOMPARE(image.size(), QSize(4, 1));
    QCOMPARE(image.pixel(3, 0), qRgb(0x30, 0x20, 0x10));
  }
  void readsOtherKinds() {
    QImage image(5, 3, QImage::Format_RGB32);
    image.fill(QColor(1, 2, 3));
    const QString path = folder_->filePath("a.png");
    QVERIFY(image.save(path));
    TexturePicture texture;
    QCOMPARE(texture.picture(path).pixel(4, 2), qRgb(1, 2, 3));
  }
  void largePicturesAreCropped() {
    QImage image(5000, 8, QImage::Format_RGB32);
    image.fill(Qt::green);
    const QString path = folder_->filePath("a.png");
    QVERIFY(image.save(path));
    TexturePicture texture;
    QCOMPARE(texture.picture(path).size(), QSize(4096, 8));
  }
  void aChangedFileIsReadAgain() {
    TexturePicture texture;
    const QString path = written("a.tga", targaHeader(kPlain, 1, 1, 24) + QByteArray(3, 1));
    QCOMPARE(texture.picture(path).width(), 1);
    written("a.tga", targaHeader(kPlain, 2, 1, 24) + QByteArray(6, 1));
    QCOMPARE(texture.picture(path).width(), 2);
  }
  void badFilesAreToldOnce_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    const QByteArray few(30, 1);
    QTest::newRow("a header that promises more")
        << "a.tga" << targaHeader(kPlain, 8000, 8000, 24) + few << "cut off";
    QTest::newRow("run lengths that promise more")
        << "a.tga" << targaHeader(kRunLength, 8000, 8000, 32) + few << "cut off";
    QTest::newRow("half a header") << "a.tga" << QByteArray(9, 2) << "cut off";
    QTest::newRow("no targa") << "a.tga" << QByteArray(5000, 0x7F) << "";
    QTest::newRow("empty") << "a.tga" << QByteArray() << "";
    QTest::newRow("a picture of enormous size")
        << "a.gif" << QByteArray("GIF89a\x60\xEA\x60\xEA", 10) + few << "too large";
    QTest::newRow("text") << "a.png" << QByteArray("hello") << "";
  }
  void badFilesAreToldOnce() {
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const QString path = written(name, content);
    const test::LogLines log;
    TexturePicture texture;
    QVERIFY(texture.picture(path).isNull());
    QVERIFY(texture.picture(path).isNull());
    QCOMPARE(log.count("texture cannot be shown"), 1);
    QVERIFY(log.count(reason) > 0);
  }
  void missingFilesAreTold_data() {
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("missing") << QString("/nowhere/Common/TextTexture/.tga");
    QTest::newRow("drive") << QString(R"(q:\nowhere\x.tga)");
  }
  void missingFilesAreTold() {
    QFETCH(QString, path);
    const test::LogLines log;
    TexturePicture texture;
    QVERIFY(texture.picture(path).isNull());
    QCOMPARE(log.count("texture cannot be shown"), 1);
  }
};

QTEST_MAIN(TexturePictureTest)
#include "tst_texture_picture.moc"
