// Pictures of every layout, made here sample by sample, come out as the colours that were put in.
#include <QtTest>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "SourceRig.h"
#include "engine/source/GstInit.h"
#include "engine/source/VideoFrameMaker.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// Code values of 8-bit BT.709, limited range, and the same colour as RGB.
struct Color {
  std::array<int, 3> yuv;
  std::array<int, 3> rgb;
};
constexpr Color kRed{{63, 102, 240}, {255, 0, 0}};
constexpr Color kGreen{{173, 42, 26}, {0, 255, 0}};
constexpr Color kBlue{{32, 240, 118}, {0, 0, 255}};
constexpr Color kWhite{{235, 128, 128}, {255, 255, 255}};
constexpr Color kGrey{{126, 128, 128}, {128, 128, 128}};

enum class Range { Limited, Full };

/// A sample of a component, in `depth` bits.
int coded(const Color& color, int component, bool isRgb, Range range, int depth) {
  const int most = (1 << depth) - 1;
  const auto index = static_cast<std::size_t>(component);
  if (isRgb)
    return static_cast<int>(std::lround(color.rgb[index] / 255.0 * most));
  const int value = color.yuv[index];
  if (range == Range::Limited)
    return value << (depth - 8);
  if (component == 0)
    return static_cast<int>(std::lround((value - 16) / 219.0 * most));
  return std::min(most, static_cast<int>(std::lround((value - 128) / 224.0 * most + (1 << (depth - 1)))));
}

/// A sample of one picture, which it frees.
class Sample {
 public:
  Sample(const QByteArray& caps, std::size_t bytes)
      : caps_(gst_caps_from_string(caps)), buffer_(gst_buffer_new_allocate(nullptr, bytes, nullptr)) {
    gst_video_info_from_caps(&info_, caps_);
    gst_buffer_memset(buffer_, 0, 0, bytes);
  }
  ~Sample() {
    if (sample_)
      gst_sample_unref(sample_);
    gst_buffer_unref(buffer_);
    gst_caps_unref(caps_);
  }
  Sample(const Sample&) = delete;
  Sample& operator=(const Sample&) = delete;

  static std::size_t sizeOf(const QByteArray& caps) {
    GstCaps* parsed = gst_caps_from_string(caps);
    GstVideoInfo info;
    const std::size_t size = gst_video_info_from_caps(&info, parsed) ? GST_VIDEO_INFO_SIZE(&info) : 0;
    gst_caps_unref(parsed);
    return size;
  }

  const GstVideoInfo& info() const { return info_; }
  /// Can be written until the first get().
  GstBuffer* buffer() const { return buffer_; }
  GstSample* get() {
    if (!sample_)
      sample_ = gst_sample_new(buffer_, caps_, nullptr, nullptr);
    return sample_;
  }

 private:
  GstVideoInfo info_;
  GstCaps* caps_;
  GstBuffer* buffer_;
  GstSample* sample_ = nullptr;
};

/// Writes one sample where the format has it: plane, step, shift and depth as GStreamer tells them, but for V
/// of P010, which stands one sample behind U and not one byte.
void writeSample(GstVideoFrame& frame, int component, int x, int y, int value) {
  const GstVideoFormatInfo* format = frame.info.finfo;
  const bool isLaterV = component == 2 && GST_VIDEO_FRAME_FORMAT(&frame) == GST_VIDEO_FORMAT_P010_10LE;
  auto* place = static_cast<std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame, component)) +
                (isLaterV ? 1 : 0) +
                static_cast<std::ptrdiff_t>(y) * GST_VIDEO_FRAME_COMP_STRIDE(&frame, component) +
                static_cast<std::ptrdiff_t>(x) * GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, component);
  const int shifted = value << format->shift[component];
  if (format->depth[component] <= 8 && GST_VIDEO_FORMAT_INFO_PSTRIDE(format, component) != 2) {
    *place = static_cast<std::uint8_t>(shifted);
    return;
  }
  place[0] = static_cast<std::uint8_t>(place[0] | (shifted & 0xFF));
  place[1] = static_cast<std::uint8_t>(place[1] | (shifted >> 8));
}

/// v210: six pixels in four words of 32 bits, three samples of 10 bits each, in the order Cb Y Cr Y.
void writeV210(GstVideoFrame& frame, int width, int height, const Color& left, const Color& right,
               Range range) {
  for (int y = 0; y < height; ++y) {
    auto* row = static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)) +
                static_cast<std::ptrdiff_t>(y) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    const int samples = (width + 1) / 2 * 4;
    for (int i = 0; i < samples; ++i) {
      const int x = i / 4 * 2 + (i % 4 == 3 ? 1 : 0);
      const int component = i % 4 == 0 ? 1 : i % 4 == 2 ? 2 : 0;
      const auto value =
          static_cast<quint32>(coded(x < width / 2 ? left : right, component, false, range, 10));
      quint32 word = 0;
      std::memcpy(&word, row + i / 3 * 4, sizeof word);
      word |= value << (i % 3 * 10);
      std::memcpy(row + i / 3 * 4, &word, sizeof word);
    }
  }
}

/// Two colours beside each other; the border lies at an even column. `alpha` of the right half, 0 to 255.
void paint(const Sample& sample, const Color& left, const Color& right, Range range, int alpha) {
  GstVideoInfo info = sample.info();
  GstVideoFrame frame;
  QVERIFY(gst_video_frame_map(&frame, &info, sample.buffer(), GST_MAP_READWRITE));
  const int border = info.width / 2;
  if (GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_v210) {
    writeV210(frame, info.width, info.height, left, right, range);
    gst_video_frame_unmap(&frame);
    return;
  }
  const bool isRgb = GST_VIDEO_INFO_IS_RGB(&info);
  for (int component = 0; component < static_cast<int>(info.finfo->n_components); ++component) {
    const int depth = static_cast<int>(info.finfo->depth[component]);
    const int step = 1 << info.finfo->w_sub[component];
    for (int y = 0; y < GST_VIDEO_FRAME_COMP_HEIGHT(&frame, component); ++y) {
      for (int x = 0; x < GST_VIDEO_FRAME_COMP_WIDTH(&frame, component); ++x) {
        const bool isRight = x * step >= border;
        const int value = component == 3 ? (isRight ? alpha : 255) * ((1 << depth) - 1) / 255
                                         : coded(isRight ? right : left, component, isRgb, range, depth);
        writeSample(frame, component, x, y, value);
      }
    }
  }
  gst_video_frame_unmap(&frame);
}

QByteArray capsOf(const QByteArray& format, FrameSize size, const QByteArray& colorimetry,
                  const QByteArray& more = {}) {
  return "video/x-raw,format=" + format + ",width=" + QByteArray::number(size.width) +
         ",height=" + QByteArray::number(size.height) + ",framerate=25/1,pixel-aspect-ratio=1/1" +
         ",colorimetry=" + colorimetry + more;
}

/// Full range of BT.709, and of RGB.
constexpr const char* kFull = "1:3:5:1";
constexpr const char* kLimited = "2:3:5:1";
constexpr const char* kRgb = "sRGB";

QVector<int> vectorOf(const std::array<int, 3>& codes) {
  return {codes[0], codes[1], codes[2]};
}

}  // namespace

class PictureConverterTest : public QObject {
  Q_OBJECT

 private:
  /// The picture as the show gets it, in its own size.
  static FrameRef made(Sample& sample) {
    VideoFrameMaker maker({sample.info().width, sample.info().height});
    return maker.make(sample.get());
  }

 private slots:
  void initTestCase() { QVERIFY(startGStreamer()); }

  void everyLayout_data() {
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("colorimetry");
    QTest::addColumn<bool>("hasColors");
    QTest::addColumn<int>("tolerance");
    const auto add = [](const char* format, const char* colorimetry, bool hasColors = true,
                        int tolerance = 1) {
      QTest::addRow("%s %s", format, colorimetry)
          << QByteArray(format) << QByteArray(colorimetry) << hasColors << tolerance;
    };
    for (const char* format : {"NV12", "UYVY", "Y444", "A420", "AYUV", "I420", "Y42B"}) {
      add(format, kLimited, true, 0);
      add(format, kFull);
    }
    for (const char* format : {"P010_10LE", "v210", "I420_10LE", "Y444_16LE"}) {
      add(format, kLimited, true, 0);
      add(format, kFull);
    }
    add("GRAY8", kLimited, false, 0);
    add("GRAY8", kFull, false);
    for (const char* format : {"BGRA", "RGBx", "RGB", "GBR", "RGBA64_LE", "GBR_10LE"})
      add(format, kRgb);
    // Five or six bits for a colour: its ends are exact, grey is near.
    add("RGB16", kRgb, true, 3);
  }

  void everyLayout() {
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, colorimetry);
    QFETCH(bool, hasColors);
    QFETCH(int, tolerance);
    const Range range = colorimetry == kFull ? Range::Full : Range::Limited;
    const std::array<Color, 3> lefts =
        hasColors ? std::array<Color, 3>{kRed, kGreen, kBlue} : std::array<Color, 3>{kWhite, kGrey, kWhite};
    for (const Color& left : lefts) {
      // Wide enough that chroma of the one half does not reach the middle of the other.
      for (const FrameSize size : {FrameSize{48, 8}, FrameSize{49, 7}, FrameSize{51, 1}}) {
        const QByteArray caps = capsOf(format, size, colorimetry);
        Sample sample(caps, Sample::sizeOf(caps));
        paint(sample, left, kGrey, range, 255);
        const FrameRef frame = made(sample);
        QVERIFY(frame);
        QCOMPARE(frame->size(), size);
        for (const int y : {0, size.height - 1}) {
          for (const int x : {0, 5, size.width - 6, size.width - 1}) {
            const QVector<int> got = codesAt(frame, x, y);
            const QVector<int> expected = vectorOf((x < size.width / 2 ? left : kGrey).yuv);
            QVERIFY2(isNear(got, expected, tolerance),
                     text(got) + "instead of " + text(expected) + "at " + QByteArray::number(x) + " of " +
                         QByteArray::number(size.width) + " x " + QByteArray::number(size.height));
          }
        }
      }
    }
  }

  void alphaComesOutPremultiplied_data() {
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("colorimetry");
    for (const char* format : {"A420", "AYUV"})
      QTest::newRow(format) << QByteArray(format) << QByteArray(kLimited);
    for (const char* format : {"BGRA", "RGBA64_LE"})
      QTest::newRow(format) << QByteArray(format) << QByteArray(kRgb);
  }

  void alphaComesOutPremultiplied() {
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, colorimetry);
    const QByteArray caps = capsOf(format, {48, 8}, colorimetry);
    Sample sample(caps, Sample::sizeOf(caps));
    paint(sample, kRed, kRed, Range::Limited, 128);
    const FrameRef frame = made(sample);
    QVERIFY(frame && frame->hasAlpha());
    QCOMPARE(int(frame->plane(Frame::A)[4]), 255);
    QVERIFY(qAbs(frame->plane(Frame::A)[44] - 128) <= 1);
    QVERIFY(isNear(codesAt(frame, 4, 4), {63, 102, 240}, 1));
    // Half of red over black.
    QVERIFY2(isNear(codesAt(frame, 44, 4), {40, 115, 184}, 1), text(codesAt(frame, 44, 4)));
  }

  void matrixOfOldPictures() {
    // Pure red by BT.601 is another luma and another chroma than by BT.709.
    const QByteArray caps = capsOf("I420", {48, 8}, "bt601");
    Sample sample(caps, Sample::sizeOf(caps));
    const Color red601{{81, 90, 240}, {255, 0, 0}};
    paint(sample, red601, red601, Range::Limited, 255);
    const QVector<int> got = codesAt(made(sample), 20, 4);
    QVERIFY2(isNear(got, {63, 102, 240}, 1), text(got));
  }

  void colorsOfFieldsDoNotMix_data() {
    QTest::addColumn<QByteArray>("format");
    for (const char* format : {"UYVY", "v210", "Y42B"})
      QTest::newRow(format) << QByteArray(format);
  }

  void colorsOfFieldsDoNotMix() {
    // The upper field is red and the lower blue, in every line: 4:2:2 has a chroma for each.
    QFETCH(QByteArray, format);
    constexpr FrameSize kSize{48, 16};
    const QByteArray caps =
        capsOf(format, kSize, kLimited, ",interlace-mode=interleaved,field-order=top-field-first");
    Sample red(caps, Sample::sizeOf(caps));
    Sample blue(caps, Sample::sizeOf(caps));
    paint(red, kRed, kRed, Range::Limited, 255);
    paint(blue, kBlue, kBlue, Range::Limited, 255);
    GstVideoInfo info = red.info();
    GstVideoFrame upper;
    GstVideoFrame lower;
    QVERIFY(gst_video_frame_map(&upper, &info, red.buffer(), GST_MAP_READWRITE));
    QVERIFY(gst_video_frame_map(&lower, &info, blue.buffer(), GST_MAP_READ));
    for (guint plane = 0; plane < GST_VIDEO_INFO_N_PLANES(&info); ++plane) {
      const auto stride = static_cast<std::size_t>(GST_VIDEO_FRAME_PLANE_STRIDE(&upper, plane));
      for (std::size_t y = 1; y < static_cast<std::size_t>(kSize.height); y += 2)
        std::memcpy(static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&upper, plane)) + y * stride,
                    static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&lower, plane)) + y * stride,
                    stride);
    }
    const auto converter = PictureConverter::create(info, PictureScan::Interlaced);
    QVERIFY(converter);
    QCOMPARE(converter->paddedSize(), kSize);
    Frame out(kSize);
    QVERIFY(converter->convert(upper, out));
    gst_video_frame_unmap(&lower);
    gst_video_frame_unmap(&upper);
    for (int y = 0; y < kSize.height; ++y)
      QCOMPARE(int(out.plane(Frame::Y)[y * out.stride(Frame::Y) + 20]), y % 2 ? 32 : 63);
    // The rows of 4:2:0 chroma belong to the fields by turns.
    for (int y = 0; y < kSize.chromaHeight(); ++y) {
      QCOMPARE(int(out.plane(Frame::U)[y * out.stride(Frame::U) + 10]), y % 2 ? 240 : 102);
      QCOMPARE(int(out.plane(Frame::V)[y * out.stride(Frame::V) + 10]), y % 2 ? 118 : 240);
    }
  }

  void paddingRepeatsTheEdge() {
    // An interlaced picture is padded to whole chroma rows of each field.
    const QByteArray caps = capsOf("Y42B", {5, 5}, kLimited, ",interlace-mode=interleaved");
    Sample sample(caps, Sample::sizeOf(caps));
    paint(sample, kGrey, kGreen, Range::Limited, 255);
    GstVideoInfo info = sample.info();
    const auto converter = PictureConverter::create(info, PictureScan::Interlaced);
    QVERIFY(converter);
    QCOMPARE(converter->paddedSize(), (FrameSize{6, 8}));
    Frame out(converter->paddedSize());
    GstVideoFrame frame;
    QVERIFY(gst_video_frame_map(&frame, &info, sample.buffer(), GST_MAP_READ));
    QVERIFY(converter->convert(frame, out));
    gst_video_frame_unmap(&frame);
    for (int y = 0; y < 8; ++y)
      QCOMPARE(int(out.plane(Frame::Y)[y * out.stride(Frame::Y) + 5]), 173);
    for (int y = 0; y < 4; ++y)
      QCOMPARE(int(out.plane(Frame::U)[y * out.stride(Frame::U) + 2]), 42);
  }

  void whatIsInTheWorkingFormatIsNotConverted() {
    const auto infoOf = [](const QByteArray& caps) {
      GstCaps* parsed = gst_caps_from_string(caps);
      GstVideoInfo info;
      gst_video_info_from_caps(&info, parsed);
      gst_caps_unref(parsed);
      return info;
    };
    QVERIFY(PictureConverter::isWorkingFormat(infoOf(capsOf("I420", {48, 8}, kLimited))));
    QVERIFY(PictureConverter::isWorkingFormat(infoOf(capsOf("YV12", {48, 8}, kLimited))));
    for (const char* colorimetry : {kFull, "bt601", "bt2020", "2:3:5:11"})
      QVERIFY2(!PictureConverter::isWorkingFormat(infoOf(capsOf("I420", {48, 8}, colorimetry))), colorimetry);
    QVERIFY(!PictureConverter::isWorkingFormat(infoOf(capsOf("NV12", {48, 8}, kLimited))));
  }
};

QTEST_GUILESS_MAIN(PictureConverterTest)
#include "tst_picture_converter.moc"
