#include "CaptureSource.h"

#include <algorithm>

#include "CaptureInput.h"
#include "engine/EngineLog.h"
#include "engine/source/live/LiveSource.h"
#include "trace/SecretMask.h"

namespace korvia {

namespace {

constexpr qint64 kMegabyte = 1024 * 1024;
constexpr qint64 kPageMemoryBytes = 1536 * kMegabyte;
// The sounds of a page wait for each other and come in blocks, up to 80 ms after their pictures, and the show
// takes them in blocks of a frame.
constexpr std::int64_t kPageLatencyNs = 160'000'000;
// The web engine needs half a second of a core to start, which a page that cannot be loaded takes each time.
constexpr std::int64_t kMostPageWaitNs = 10'000'000'000;

CaptureRequest requestOf(const SourceContext& context, CaptureKind kind) {
  CaptureRequest request;
  request.kind = kind;
  request.rateNumerator = context.rate.numerator;
  request.rateDenominator = context.rate.denominator;
  return request;
}

std::shared_ptr<Source> makeSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                   const tagKorviaFormatInfo& format, const CaptureRequest& request,
                                   const QString& description) {
  LiveSettings settings;
  settings.description = description;
  const auto windowIsGone = std::make_shared<std::atomic<bool>>(false);
  if (request.kind == CaptureKind::Page) {
    settings.latencyNs = kPageLatencyNs;
    settings.mostWaitNs = kMostPageWaitNs;
  }
  return std::make_shared<LiveSource>(
      context, info, format, settings,
      [request, size = context.renderSize, windowIsGone](LiveReceiver& receiver) {
        CaptureRequest wanted = request;
        // Another window may have its number, and may not belong on air.
        if (*windowIsGone)
          wanted.windowId.clear();
        return std::make_unique<CaptureInput>(wanted, size, windowIsGone, receiver);
      });
}

/// A whole, even side of a page.
int pageSide(int asked, int side) {
  return std::clamp(asked > 0 ? asked : side, 2, kPageSideMax) / 2 * 2;
}

void warnOfWayland() {
  if (qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland") &&
      qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
    qCWarning(logSource, "the desktop is a wayland session, in which only windows of x11 can be captured");
}

}  // namespace

std::shared_ptr<Source> makePageSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                       const tagKorviaFormatInfo& format) {
  CaptureRequest request = requestOf(context, CaptureKind::Page);
  request.address = info.webUrl;
  request.width = pageSide(format.video.secondWidth, context.renderSize.width);
  request.height = pageSide(format.video.secondHeight, context.renderSize.height);
  request.mostMemoryBytes = kPageMemoryBytes;
  return makeSource(context, info, format, request, maskSecrets(info.webUrl));
}

std::shared_ptr<Source> makeWindowSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format) {
  warnOfWayland();
  CaptureRequest request = requestOf(context, CaptureKind::Window);
  request.windowId = info.windowInfo.windowId;
  request.windowTitle = info.windowInfo.title;
  request.windowProgram = info.windowInfo.program;
  return makeSource(context, info, format, request,
                    QStringLiteral("window of %1").arg(info.windowInfo.program));
}

std::shared_ptr<Source> makeScreenSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format) {
  warnOfWayland();
  CaptureRequest request = requestOf(context, CaptureKind::Screen);
  request.screenIndex = info.screenIndex;
  return makeSource(context, info, format, request, QStringLiteral("screen %1").arg(info.screenIndex));
}

}  // namespace korvia
