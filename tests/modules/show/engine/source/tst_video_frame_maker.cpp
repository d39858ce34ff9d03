// Pictures that are refused before anything is read or made. What is accepted is in the tests of films.
#include <QtTest>

#include "SourceRig.h"
#include "engine/source/GstInit.h"
#include "engine/source/VideoFrameMaker.h"

using namespace korvia;

class VideoFrameMakerTest : public QObject {
  Q_OBJECT

 private:
  static FrameRef make(VideoFrameMaker& maker, const char* description) {
    GstCaps* caps = gst_caps_from_string(description);
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, 16, nullptr);
    GstSample* sample = gst_sample_new(buffer, caps, nullptr, nullptr);
    const FrameRef frame = maker.make(sample);
    gst_sample_unref(sample);
    gst_buffer_unref(buffer);
    gst_caps_unref(caps);
    return frame;
  }

 private slots:
  void initTestCase() { QVERIFY(startGStreamer()); }

  void tooLargePicturesAreRefusedWithOneLine() {
    VideoFrameMaker maker({320, 180});
    test::WarningKeeper log;
    const char* caps = "video/x-raw,format=RGB,width=16384,height=16384,framerate=25/1";
    QVERIFY(!make(maker, caps));
    QVERIFY(!make(maker, caps));
    QCOMPARE(log.lines(), QStringList("pictures of 16384 x 16384 are too large"));
  }

  void picturesWithoutASizeAreRefusedEachTime() {
    VideoFrameMaker maker({320, 180});
    for (int i = 0; i < 2; ++i)
      QVERIFY(!make(maker, "video/x-raw,format=RGB"));
  }

  void aBufferThatIsTooShortGivesNoFrame() {
    VideoFrameMaker maker({320, 180});
    QVERIFY(!make(maker, "video/x-raw,format=I420,width=320,height=180,framerate=25/1,colorimetry=bt709"));
  }
};

QTEST_GUILESS_MAIN(VideoFrameMakerTest)
#include "tst_video_frame_maker.moc"
