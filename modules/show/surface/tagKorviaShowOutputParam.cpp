#include "tagKorviaShowOutputParam.h"

namespace {

quint16 port(int base, int index, bool alternatePorts) {
  return static_cast<quint16>(base + index + (alternatePorts ? 200 : 0));
}

}  // namespace

tagKorviaShowOutputItem::tagKorviaShowOutputItem(int index, bool alternatePorts)
    : recordPath(QStringLiteral("d:\\records\\vod\\%1\\").arg(index)),
      recordNameFormat(QStringLiteral("${PROGRAMNAME}_${TIME}")),
      recordTimeFormat(QStringLiteral("yy-MM-dd/hh_mm_ss")),
      httpPort(port(8080, index, alternatePorts)),
      httpPath(QStringLiteral("/live/%1").arg(index)),
      udpAddress(QStringLiteral("234.0.0.%1").arg(index + 1)),
      udpPort(port(8000, index, alternatePorts)),
      hlsTemporaryFolder(QStringLiteral("d:\\records\\hls\\%1\\").arg(index)),
      hlsPath(QStringLiteral("/hls/%1").arg(index)),
      rtmp0Url(QStringLiteral("rtmp://192.168.0.1/live/stream_%1").arg(index)),
      rtmp1Url(QStringLiteral("rtmp://192.168.0.2/live/stream_%1").arg(index)),
      rtmpLocalPath(QStringLiteral("/output_%1").arg(index)),
      livePath(QStringLiteral("/live_%1").arg(index)),
      secondPort(8090 + 2 * index + (alternatePorts ? 200 : 0)),
      secondPath(QStringLiteral("/live/%1").arg(index)),
      sdiFormat(QStringLiteral("1080p25")),
      sdiSignal(QStringLiteral("SDI")),
      tsFolder(QStringLiteral("d:\\records\\ts\\%1\\").arg(index)),
      secondAddress(QStringLiteral("192.168.0.%1").arg(index + 1)),
      thirdPort(port(18000, index, alternatePorts)),
      ndiName(QStringLiteral("GNDIOutput-%1").arg(index)) {}

tagKorviaShowOutputParam::tagKorviaShowOutputParam() {
  for (int index = 0; index < kCount; ++index)
    items[static_cast<std::size_t>(index)] = tagKorviaShowOutputItem(index);
}
