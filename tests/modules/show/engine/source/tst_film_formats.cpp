// Pictures of every make come out in the render format with the right colours, shape and side up.
#include <QtTest>

#include "SourceRig.h"
#include "engine/frame/PictureFrame.h"
#include "engine/source/VideoFrameMaker.h"

using namespace korvia;
using namespace korvia::test;

namespace {

QString clip(const QString& name) {
  return QStringLiteral(MEDIA_DIR "/") + name;
}

}  // namespace

class FilmFormatsTest : public QObject {
  Q_OBJECT

 private slots:
  void colors_data() {
    QTest::addColumn<QString>("file");
    for (const char* file : {"flat_h264.mp4", "flat_10bit422.mkv", "flat_444.mkv", "flat_full.avi",
                             "flat_601.mkv", "flat_rgb.mov", "flat_odd.mkv", "flat_alpha.mov"})
      QTest::newRow(file) << file;
  }

  void colors() {
    QFETCH(QString, file);
    const auto codes = codeValues(0xFFC02040);
    const QVector<int> expected{codes[0], codes[1], codes[2]};
    SourceRig rig;
    rig.openFilm(clip(file));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    QCOMPARE(rig.last()->width(), 320);
    QCOMPARE(rig.last()->height(), 180);
    for (const QPoint place : {QPoint(4, 4), QPoint(160, 90), QPoint(314, 174)}) {
      const QVector<int> got = codesAt(rig.last(), place.x(), place.y());
      QVERIFY2(isNear(got, expected, 3), text(got) + "instead of " + text(expected));
    }
  }

  void twoPlanePictures() {
    // What hardware decoders give; luma rises with the place, chroma is U 90, V 160.
    gst_init(nullptr, nullptr);
    GstCaps* caps =
        gst_caps_from_string("video/x-raw,format=NV12,width=320,height=180,framerate=25/1,colorimetry=bt709");
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, 320 * 180 * 3 / 2, nullptr);
    GstMapInfo map;
    QVERIFY(gst_buffer_map(buffer, &map, GST_MAP_WRITE));
    for (int i = 0; i < 320 * 180; ++i)
      map.data[i] = static_cast<guint8>(16 + i % 320 / 2);
    for (int i = 320 * 180; i < 320 * 270; ++i)
      map.data[i] = i % 2 ? 160 : 90;
    gst_buffer_unmap(buffer, &map);
    GstSample* sample = gst_sample_new(buffer, caps, nullptr, nullptr);
    VideoFrameMaker maker({320, 180});
    const FrameRef frame = maker.make(sample);
    QCOMPARE(codesAt(frame, 0, 0), (QVector<int>{16, 90, 160}));
    QCOMPARE(codesAt(frame, 200, 179), (QVector<int>{116, 90, 160}));
    gst_sample_unref(sample);
    gst_buffer_unref(buffer);
    gst_caps_unref(caps);
  }

  void largerPictureIsScaled() {
    SourceRig rig;
    rig.openFilm(clip("large.mp4"));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 5; }));
    QCOMPARE(rig.last()->width(), 320);
    QCOMPARE(rig->figures().description, QString("large.mp4, 640 x 360"));
  }

  void wideSamplesFillTheFrame() {
    SourceRig rig;
    rig.openFilm(clip("anamorphic.mp4"));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    QVERIFY(isNear(codesAt(rig.last(), 2, 90), {235, 128, 128}, 2));
    QVERIFY(isNear(codesAt(rig.last(), 317, 90), {235, 128, 128}, 2));
  }

  void otherShapesStandBetweenBars() {
    SourceRig rig;
    rig.openFilm(clip("narrow.mp4"));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    QCOMPARE(codesAt(rig.last(), 38, 90), (QVector<int>{16, 128, 128}));
    QVERIFY(isNear(codesAt(rig.last(), 42, 90), {235, 128, 128}, 2));
    QVERIFY(isNear(codesAt(rig.last(), 277, 90), {235, 128, 128}, 2));
    QCOMPARE(codesAt(rig.last(), 281, 90), (QVector<int>{16, 128, 128}));
  }

  void turnedFilmStandsUpright() {
    SourceRig rig;
    rig.openFilm(clip("turned.mp4"));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    // 180 x 320 turned clockwise is 320 x 180: its upper half becomes the right one.
    QVERIFY(isNear(codesAt(rig.last(), 40, 90), {16, 128, 128}, 2));
    QVERIFY(isNear(codesAt(rig.last(), 280, 20), {235, 128, 128}, 2));
    QVERIFY(isNear(codesAt(rig.last(), 280, 160), {235, 128, 128}, 2));
  }

  void orientationTags() {
    QVERIFY((PictureOrientation::fromTag("rotate-0") == PictureOrientation{false, 0}));
    QVERIFY((PictureOrientation::fromTag("rotate-270") == PictureOrientation{false, 270}));
    QVERIFY((PictureOrientation::fromTag("flip-rotate-90") == PictureOrientation{true, 90}));
    QVERIFY((PictureOrientation::fromTag("flip-rotate-0") == PictureOrientation{true, 0}));
    QVERIFY((PictureOrientation::fromTag("flip-sideways") == PictureOrientation{false, 0}));
    QVERIFY((PictureOrientation::fromTag(nullptr) == PictureOrientation{false, 0}));
  }

  void oneLineDetailOfInterlacedFilmsStays_data() {
    QTest::addColumn<QString>("file");
    QTest::newRow("8 bits") << "interlaced.mpg";
    QTest::newRow("10 bits") << "interlaced10.mp4";
  }

  void oneLineDetailOfInterlacedFilmsStays() {
    QFETCH(QString, file);
    SourceRig rig;
    rig.openFilm(clip(file), EndActionStop);
    // The stripes stand still: from the second picture on that is known.
    QVERIFY(rig.tickUntil(Ended));
    for (int y = 20; y < 160; ++y) {
      const int luma = codesAt(rig.last(), 160, y)[0];
      QVERIFY2(y % 2 ? luma < 40 : luma > 200, QByteArray::number(y) + ": " + QByteArray::number(luma));
    }
    // One picture a frame, not one a field.
    QCOMPARE(rig->figures().framesDecoded, qint64(25));
  }

  void movingFieldsAreTakenApart_data() {
    QTest::addColumn<QString>("file");
    QTest::newRow("top field first") << "moving_top1.mpg";
    QTest::newRow("bottom field first") << "moving_top0.mpg";
  }

  void movingFieldsAreTakenApart() {
    QFETCH(QString, file);
    SourceRig rig;
    rig.openFilm(clip(file), EndActionStop);
    // Ticks before that show nothing new.
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    FrameRef shown;
    const auto edgeIn = [&shown](int y) {
      int x = 0;
      while (x < 320 && codesAt(shown, x, y)[0] > 120)
        ++x;
      return x;
    };
    int pictures = 0;
    int last = -1;
    // tick() waits for the decoder, so that a busy machine skips no picture.
    for (int i = 0; i < 100 && rig->getPlayState() != Ended; ++i) {
      shown = rig.tick();
      if (!shown || edgeIn(90) == last)
        continue;
      const int edge = edgeIn(90);
      // The bar grows by six columns a field; the picture is that of the first field, in every line.
      QCOMPARE(edge % 12, 0);
      QVERIFY2(edge > last, QByteArray::number(edge));
      for (int y = 80; y < 100; ++y)
        QCOMPARE(edgeIn(y), edge);
      last = edge;
      ++pictures;
    }
    QVERIFY2(pictures >= 20, QByteArray::number(pictures));
  }

  void quickTimeDnxhr() {
    SourceRig rig;
    rig.openFilm(clip("dnxhr.mov"));
    QVERIFY(rig.tickUntil([&] { return rig.last(); }));
    const auto codes = codeValues(0xFFC02040);
    QVERIFY2(isNear(codesAt(rig.last(), 160, 90), {codes[0], codes[1], codes[2]}, 2),
             text(codesAt(rig.last(), 160, 90)));
  }
};

QTEST_GUILESS_MAIN(FilmFormatsTest)
#include "tst_film_formats.moc"
