// Picture files: fitted, upright, over black; tiny, huge and broken ones.
#include <QBuffer>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "SourceRig.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

class ImageSourceTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString save(const QImage& image, const QString& name, QImageIOHandler::Transformations turn = {}) {
    const QString path = folder_.filePath(name);
    QImageWriter writer(path);
    writer.setTransformation(turn);
    return writer.write(image) ? path : QString();
  }

  QString write(const QByteArray& bytes, const QString& name) { return writeTestFile(folder_, name, bytes); }

  static void open(SourceRig& rig, const QString& path) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindImage;
    info.imagePath = path;
    rig.open(info);
  }

 private slots:
  void pictureIsFitted() {
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::red);
    SourceRig rig({64, 36});
    open(rig, save(image, "red.png"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(frame->width(), 64);
    QCOMPARE(codesAt(frame, 13, 18), (QVector<int>{16, 128, 128}));
    QVERIFY(isNear(codesAt(frame, 14, 0), {63, 102, 240}, 1));
    QVERIFY(isNear(codesAt(frame, 49, 35), {63, 102, 240}, 1));
    QCOMPARE(codesAt(frame, 50, 18), (QVector<int>{16, 128, 128}));
    QCOMPARE(rig->figures().description, QString("red.png, 40 x 40"));
    QCOMPARE(rig.durationMs(), qint64(0));
    QCOMPARE(rig->getItemCount(), 1);
  }

  void transparencyIsOverBlack() {
    QImage image(64, 36, QImage::Format_ARGB32);
    image.fill(qRgba(255, 255, 255, 128));
    SourceRig rig({64, 36});
    open(rig, save(image, "half.png"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, 30, 20), (QVector<int>{126, 128, 128}));
    QVERIFY(frame->hasAlpha());
    QCOMPARE(int(frame->plane(Frame::A)[20 * frame->stride(Frame::A) + 30]), 128);
  }

  void barsBesideATransparentPictureHideNothing() {
    QImage image(36, 36, QImage::Format_ARGB32);
    image.fill(qRgba(255, 255, 255, 128));
    SourceRig rig({64, 36});
    open(rig, save(image, "square.png"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(int(rig->pullFrame(1)->plane(Frame::A)[2]), 0);
  }

  void alphaThatHidesNothingIsDropped() {
    QImage image(64, 36, QImage::Format_ARGB32);
    image.fill(Qt::white);
    SourceRig rig({64, 36});
    open(rig, save(image, "opaque.png"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(!rig->pullFrame(1)->hasAlpha());
  }

  void kindsOfFiles_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"red.png", "red.jpg", "red.bmp", "red.webp", "red.tiff"})
      QTest::newRow(name) << name;
  }

  void kindsOfFiles() {
    QFETCH(QString, name);
    QImage image(64, 36, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = save(image, name);
    QVERIFY(!path.isEmpty());
    SourceRig rig({64, 36});
    open(rig, path);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(isNear(codesAt(rig->pullFrame(1), 32, 18), {63, 102, 240}, 2));
  }

  void targaIsKnownByItsName_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("lower case") << "red.tga";
    QTest::newRow("upper case") << "RED.TGA";
  }

  void targaIsKnownByItsName() {
    QFETCH(QString, name);
    // An uncompressed picture of 64 x 36 pixels, 24 bit, from the top: blue, green, red.
    QByteArray file = QByteArray::fromHex("000002000000000000000000400024001820");
    for (int i = 0; i < 64 * 36; ++i)
      file += QByteArray::fromHex("0000ff");
    SourceRig rig({64, 36});
    open(rig, write(file, name));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(isNear(codesAt(rig->pullFrame(1), 32, 18), {63, 102, 240}, 1));
  }

  void lyingPhotoStandsUpright() {
    QImage image(36, 64, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 0; y < 32; ++y) {
      for (int x = 0; x < 36; ++x)
        image.setPixel(x, y, qRgb(255, 255, 255));
    }
    const QString path = save(image, "turned.jpg", QImageIOHandler::TransformationRotate90);
    QVERIFY(!path.isEmpty());
    SourceRig rig({64, 36});
    open(rig, path);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    // Turned clockwise the upper half is the right one.
    QVERIFY(codesAt(rig->pullFrame(1), 10, 18)[0] < 30);
    QVERIFY(codesAt(rig->pullFrame(1), 54, 18)[0] > 220);
  }

  void onePixel() {
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    SourceRig rig({64, 36});
    open(rig, save(image, "one.png"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(isNear(codesAt(rig->pullFrame(1), 32, 18), {235, 128, 128}, 1));
    QCOMPARE(codesAt(rig->pullFrame(1), 2, 18), (QVector<int>{16, 128, 128}));
  }

  void largestPicture() {
    const QString path = folder_.filePath("large.png");
    {
      QImage image(8192, 8192, QImage::Format_Mono);
      image.setColorTable({qRgb(255, 0, 0), qRgb(0, 0, 0)});
      image.fill(0);
      QVERIFY(image.save(path));
    }
    SourceRig rig({64, 36});
    open(rig, path);
    QTRY_COMPARE_WITH_TIMEOUT(rig->getPlayState(), int(Playing), 60'000);
    QVERIFY(isNear(codesAt(rig->pullFrame(1), 32, 18), {63, 102, 240}, 1));
  }

  void buttonsFollow() {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::white);
    SourceRig rig({64, 36});
    open(rig, save(image, "buttons.png"));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    QTRY_VERIFY(rig->pullFrame(1));
    rig->stop();
    QCOMPARE(rig->getPlayState(), int(Stopped));
    QVERIFY(rig->pullFrame(1));
    rig->play();
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void errorAndALine_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << folder_.filePath("none.png") << "no such file";
    QTest::newRow("folder") << folder_.path() << "is no file";
    QTest::newRow("empty") << write("", "empty.png") << "unsupported image format";
    QTest::newRow("text") << write("this is no picture", "text.png") << "unsupported image format";
    // A header that promises 50000 x 50000.
    const QByteArray bomb =
        QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000c3500000c3500802000000c4cdaa9d");
    QTest::newRow("bomb") << write(bomb + "    IDAT", "bomb.png") << "too large, 50000 x 50000";
    QImage image(64, 64, QImage::Format_RGB32);
    image.fill(Qt::white);
    QBuffer whole;
    whole.open(QIODevice::WriteOnly);
    image.save(&whole, "PNG");
    QTest::newRow("truncated") << write(whole.data().left(60), "truncated.png") << "";
  }

  void errorAndALine() {
    QFETCH(QString, path);
    QFETCH(QString, reason);
    WarningKeeper log;
    SourceRig rig({64, 36});
    open(rig, path);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig->pullFrame(1));
    QVERIFY(!log.lines().isEmpty());
    QVERIFY2(
        log.lines().last().startsWith("picture cannot be shown : ") && log.lines().last().endsWith(reason),
        qPrintable(log.lines().last()));
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QVERIFY(!state.reason.isEmpty());
    QVERIFY(log.lines().last().endsWith(" : " + state.reason));
    rig->play();
    QCOMPARE(rig->getPlayState(), int(Error));
  }

  void closeWhileLoading() {
    SourceRig rig({64, 36});
    open(rig, folder_.filePath("large.png"));
    QElapsedTimer timer;
    timer.start();
    rig.close();
    QVERIFY(timer.elapsed() < 100);
    rig.drop();
    QVERIFY(waitForClosedSources(60'000));
  }
};

QTEST_GUILESS_MAIN(ImageSourceTest)
#include "tst_image_source.moc"
