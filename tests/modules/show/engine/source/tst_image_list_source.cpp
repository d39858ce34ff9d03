// Lists of picture files: they follow one another, wrap around, and lack the ones that cannot be read.
#include <QTemporaryDir>
#include <QtTest>

#include "SourceRig.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

class ImageListSourceTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString picture(const QString& name, QRgb color) {
    QImage image(64, 36, QImage::Format_ARGB32);
    image.fill(color);
    const QString path = folder_.filePath(name);
    return image.save(path) ? path : QString();
  }

  QString file(const QString& name, const QByteArray& bytes) { return writeTestFile(folder_, name, bytes); }

  static tagKorviaShowSourceInfo infoOf(const QStringList& paths) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindImageList;
    info.imageList = paths;
    return info;
  }

  static int lumaOf(SourceRig& rig, int ticks = 1) {
    const FrameRef frame = rig->pullFrame(ticks);
    return frame ? codesAt(frame, 32, 18)[0] : -1;
  }

 private slots:
  void picturesFollowOneAnother() {
    SourceRig rig({64, 36});
    rig.open(infoOf({picture("white.png", 0xFFFFFFFF), picture("black.png", 0xFF000000),
                     picture("red.png", 0xFFFF0000)}));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig->getItemCount(), 3);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(lumaOf(rig), 235);
    QCOMPARE(rig.durationMs(), qint64(15'000));
    // 5 s at 25 frames a second.
    rig->stop();
    rig->play();
    QCOMPARE(lumaOf(rig, 124), 235);
    QTRY_COMPARE(lumaOf(rig), 16);
    QCOMPARE(rig->getItemIndex(), 1);
    rig->stop();
    rig->next();
    QTRY_COMPARE(lumaOf(rig), 63);
    rig->next();
    QTRY_COMPARE(lumaOf(rig), 235);
    QCOMPARE(rig->getItemIndex(), 0);
    rig->prev();
    QTRY_COMPARE(lumaOf(rig), 63);
    QCOMPARE(rig->getItemIndex(), 2);
    QCOMPARE(rig->figures().description, QString("3 pictures"));
  }

  void pictureKeepsItsAlpha() {
    SourceRig rig({64, 36});
    rig.open(infoOf({picture("half.png", 0x80FFFFFF)}));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(codesAt(frame, 30, 20), (QVector<int>{126, 128, 128}));
    QVERIFY(frame->hasAlpha());
    QCOMPARE(int(frame->plane(Frame::A)[20 * frame->stride(Frame::A) + 30]), 128);
  }

  void unreadableFileIsSkippedWithALine() {
    WarningKeeper log;
    const QString missing = folder_.filePath("missing.png");
    SourceRig rig({64, 36});
    rig.open(infoOf({picture("white.png", 0xFFFFFFFF), missing, picture("black.png", 0xFF000000)}));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->pause();
    rig->next();
    QTRY_COMPARE(lumaOf(rig), 16);
    QCOMPARE(rig->getItemIndex(), 2);
    QCOMPARE(rig->getItemCount(), 3);
    rig->prev();
    QTRY_COMPARE(lumaOf(rig), 235);
    QCOMPARE(log.lines(), QStringList{"picture skipped : " + missing + " : no such file"});
  }

  void listWithoutAReadableFileIsAnError() {
    WarningKeeper log;
    // A header that promises 50000 x 50000.
    const QByteArray bomb =
        QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000c3500000c3500802000000c4cdaa9d");
    SourceRig rig({64, 36});
    rig.open(infoOf({file("text.png", "this is no picture"), file("bomb.png", bomb + "    IDAT")}));
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, QString("none of 2 can be shown : too large, 50000 x 50000"));
    QCOMPARE(log.lines().size(), 2);
    QVERIFY(!rig->pullFrame(1));
  }

  void emptyListIsAnError() {
    WarningKeeper log;
    SourceRig rig({64, 36});
    rig.open(infoOf({}));
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QCOMPARE(log.lines(), QStringList{"list of pictures cannot be shown : no picture in the list"});
  }
};

QTEST_GUILESS_MAIN(ImageListSourceTest)
#include "tst_image_list_source.moc"
