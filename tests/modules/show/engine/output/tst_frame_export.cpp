#include <gst/video/video.h>

#include <QPoint>
#include <QtTest>

#include "engine/output/FrameExport.h"
#include "engine/output/Nv12Export.h"
#include "support/TestPattern.h"

using namespace korvia;

class FrameExportTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void mapsToTheFramesOwnPlanes() {
    FramePool pool({322, 182});
    const FrameRef frame = test::patternFrame(pool, 5);
    GstBuffer* buffer = wrapFrame(frame);
    GstVideoInfo info;
    gst_video_info_set_format(&info, GST_VIDEO_FORMAT_I420, 322, 182);
    GstVideoFrame mapped;
    QVERIFY(gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ));
    for (int plane = 0; plane < 3; ++plane) {
      QCOMPARE(static_cast<const void*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped, plane)),
               static_cast<const void*>(frame->plane(plane)));
      QCOMPARE(GST_VIDEO_FRAME_PLANE_STRIDE(&mapped, plane), frame->stride(plane));
    }
    gst_video_frame_unmap(&mapped);
    QCOMPARE(gst_buffer_n_memory(buffer), 3U);
    gst_buffer_unref(buffer);
  }

  void copiesToNv12() {
    FramePool pool({322, 182});
    Nv12Export nv12({322, 182});
    const FrameRef frame = test::patternFrame(pool, 5);
    GstBuffer* buffer = nv12.copy(*frame);
    QVERIFY(buffer);
    GstVideoInfo info;
    gst_video_info_set_format(&info, GST_VIDEO_FORMAT_NV12, 322, 182);
    GstVideoFrame mapped;
    QVERIFY(gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ));
    const auto sample = [&mapped](int plane, int x, int y) {
      return static_cast<const std::uint8_t*>(
          GST_VIDEO_FRAME_PLANE_DATA(&mapped, plane))[y * GST_VIDEO_FRAME_PLANE_STRIDE(&mapped, plane) + x];
    };
    for (const QPoint at : {QPoint(0, 0), QPoint(321, 181), QPoint(100, 90)}) {
      QCOMPARE(sample(0, at.x(), at.y()), frame->plane(Frame::Y)[at.y() * frame->stride(Frame::Y) + at.x()]);
      QCOMPARE(int(sample(1, at.x() / 2 * 2, at.y() / 2)), 100);
      QCOMPARE(int(sample(1, at.x() / 2 * 2 + 1, at.y() / 2)), 150);
    }
    gst_video_frame_unmap(&mapped);
    gst_buffer_unref(buffer);
  }

  void holdsTheFrameUntilTheBufferIsGone() {
    int released = 0;
    std::uint8_t pixels[64] = {};
    Frame::External external;
    for (int plane = 0; plane < 3; ++plane) {
      external.data[plane] = pixels;
      external.stride[plane] = 16;
    }
    external.release = [](void* count) { ++*static_cast<int*>(count); };
    external.opaque = &released;
    FrameRef frame = FrameRef::adopt(new Frame({4, 4}, external));
    GstBuffer* buffer = wrapFrame(frame);
    frame.reset();
    QCOMPARE(released, 0);
    gst_buffer_unref(buffer);
    QCOMPARE(released, 1);
  }
};

QTEST_APPLESS_MAIN(FrameExportTest)
#include "tst_frame_export.moc"
