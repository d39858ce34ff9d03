#include "SdiModes.h"

#include <gst/video/video.h>

namespace korvia {

namespace {

constexpr SdiMode kModes[] = {
    {"ntsc", {{720, 486}, {30000, 1001}, Scan::Interlaced, 10, 11}},
    {"ntsc2398", {{720, 486}, {24000, 1001}, Scan::Interlaced, 10, 11}},
    {"pal", {{720, 576}, {25, 1}, Scan::Interlaced, 12, 11}},
    {"ntsc-p", {{720, 486}, {60000, 1001}, Scan::Progressive, 10, 11}},
    {"pal-p", {{720, 576}, {50, 1}, Scan::Progressive, 12, 11}},
    {"ntsc-widescreen", {{720, 486}, {30000, 1001}, Scan::Interlaced, 40, 33}},
    {"ntsc2398-widescreen", {{720, 486}, {24000, 1001}, Scan::Interlaced, 40, 33}},
    {"pal-widescreen", {{720, 576}, {25, 1}, Scan::Interlaced, 16, 11}},
    {"ntsc-p-widescreen", {{720, 486}, {60000, 1001}, Scan::Progressive, 40, 33}},
    {"pal-p-widescreen", {{720, 576}, {50, 1}, Scan::Progressive, 16, 11}},
    {"1080p2398", {{1920, 1080}, {24000, 1001}, Scan::Progressive}},
    {"1080p24", {{1920, 1080}, {24, 1}, Scan::Progressive}},
    {"1080p25", {{1920, 1080}, {25, 1}, Scan::Progressive}},
    {"1080p2997", {{1920, 1080}, {30000, 1001}, Scan::Progressive}},
    {"1080p30", {{1920, 1080}, {30, 1}, Scan::Progressive}},
    {"1080p50", {{1920, 1080}, {50, 1}, Scan::Progressive}},
    {"1080p5994", {{1920, 1080}, {60000, 1001}, Scan::Progressive}},
    {"1080p60", {{1920, 1080}, {60, 1}, Scan::Progressive}},
    {"1080i50", {{1920, 1080}, {25, 1}, Scan::Interlaced}},
    {"1080i5994", {{1920, 1080}, {30000, 1001}, Scan::Interlaced}},
    {"1080i60", {{1920, 1080}, {30, 1}, Scan::Interlaced}},
    {"720p50", {{1280, 720}, {50, 1}, Scan::Progressive}},
    {"720p5994", {{1280, 720}, {60000, 1001}, Scan::Progressive}},
    {"720p60", {{1280, 720}, {60, 1}, Scan::Progressive}},
    {"1556p2398", {{2048, 1556}, {24000, 1001}, Scan::Progressive}},
    {"1556p24", {{2048, 1556}, {24, 1}, Scan::Progressive}},
    {"1556p25", {{2048, 1556}, {25, 1}, Scan::Progressive}},
    {"2kdcip2398", {{2048, 1080}, {24000, 1001}, Scan::Progressive}},
    {"2kdcip24", {{2048, 1080}, {24, 1}, Scan::Progressive}},
    {"2kdcip25", {{2048, 1080}, {25, 1}, Scan::Progressive}},
    {"2kdcip2997", {{2048, 1080}, {30000, 1001}, Scan::Progressive}},
    {"2kdcip30", {{2048, 1080}, {30, 1}, Scan::Progressive}},
    {"2kdcip50", {{2048, 1080}, {50, 1}, Scan::Progressive}},
    {"2kdcip5994", {{2048, 1080}, {60000, 1001}, Scan::Progressive}},
    {"2kdcip60", {{2048, 1080}, {60, 1}, Scan::Progressive}},
    {"2160p2398", {{3840, 2160}, {24000, 1001}, Scan::Progressive}},
    {"2160p24", {{3840, 2160}, {24, 1}, Scan::Progressive}},
    {"2160p25", {{3840, 2160}, {25, 1}, Scan::Progressive}},
    {"2160p2997", {{3840, 2160}, {30000, 1001}, Scan::Progressive}},
    {"2160p30", {{3840, 2160}, {30, 1}, Scan::Progressive}},
    {"2160p50", {{3840, 2160}, {50, 1}, Scan::Progressive}},
    {"2160p5994", {{3840, 2160}, {60000, 1001}, Scan::Progressive}},
    {"2160p60", {{3840, 2160}, {60, 1}, Scan::Progressive}},
    {"4kdcip2398", {{4096, 2160}, {24000, 1001}, Scan::Progressive}},
    {"4kdcip24", {{4096, 2160}, {24, 1}, Scan::Progressive}},
    {"4kdcip25", {{4096, 2160}, {25, 1}, Scan::Progressive}},
    {"4kdcip2997", {{4096, 2160}, {30000, 1001}, Scan::Progressive}},
    {"4kdcip30", {{4096, 2160}, {30, 1}, Scan::Progressive}},
    {"4kdcip50", {{4096, 2160}, {50, 1}, Scan::Progressive}},
    {"4kdcip5994", {{4096, 2160}, {60000, 1001}, Scan::Progressive}},
    {"4kdcip60", {{4096, 2160}, {60, 1}, Scan::Progressive}},
    {"8kp2398", {{7680, 4320}, {24000, 1001}, Scan::Progressive}},
    {"8kp24", {{7680, 4320}, {24, 1}, Scan::Progressive}},
    {"8kp25", {{7680, 4320}, {25, 1}, Scan::Progressive}},
    {"8kp2997", {{7680, 4320}, {30000, 1001}, Scan::Progressive}},
    {"8kp30", {{7680, 4320}, {30, 1}, Scan::Progressive}},
    {"8kp50", {{7680, 4320}, {50, 1}, Scan::Progressive}},
    {"8kp5994", {{7680, 4320}, {60000, 1001}, Scan::Progressive}},
    {"8kp60", {{7680, 4320}, {60, 1}, Scan::Progressive}},
    {"8kdcip2398", {{8192, 4320}, {24000, 1001}, Scan::Progressive}},
    {"8kdcip24", {{8192, 4320}, {24, 1}, Scan::Progressive}},
    {"8kdcip25", {{8192, 4320}, {25, 1}, Scan::Progressive}},
    {"8kdcip2997", {{8192, 4320}, {30000, 1001}, Scan::Progressive}},
    {"8kdcip30", {{8192, 4320}, {30, 1}, Scan::Progressive}},
    {"8kdcip50", {{8192, 4320}, {50, 1}, Scan::Progressive}},
    {"8kdcip5994", {{8192, 4320}, {60000, 1001}, Scan::Progressive}},
    {"8kdcip60", {{8192, 4320}, {60, 1}, Scan::Progressive}},
};

/// Without what people write differently: case, blanks and the point of a rate.
QString plainName(const QString& format) {
  QString plain = format.toLower();
  plain.remove(QLatin1Char(' '));
  plain.remove(QLatin1Char('.'));
  return plain;
}

}  // namespace

std::optional<SdiMode> findSdiMode(const QString& format) {
  const QString plain = plainName(format);
  for (const SdiMode& mode : kModes) {
    if (plain == QLatin1String(mode.nick))
      return mode;
  }
  return {};
}

const char* sdiColorimetry(const DevicePicture& picture) {
  if (picture.size.height >= 2160)
    return GST_VIDEO_COLORIMETRY_BT2020;
  return picture.size.height > 576 ? GST_VIDEO_COLORIMETRY_BT709 : GST_VIDEO_COLORIMETRY_BT601;
}

}  // namespace korvia
