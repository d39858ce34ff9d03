#include "CrawlLayers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvia {

namespace {

// So long before it is needed the next part is drawn, which takes some hundredths of a second.
constexpr double kAheadMs = 400;
// A part lasts so long, within the limits of a picture.
constexpr double kLastingMs = 3000;
constexpr int kLeastAhead = 1024;
constexpr int kMostAhead = 16384;
constexpr int kMargin = 64;

bool goesLeft(const tagKorviaShowTextInfo& info) {
  return info.scrollEndX < info.x;
}

struct Way {
  double first = 0;
  double last = 0;
};

/// The left edge of the content at the begin and the end of a round.
Way wayOf(const tagKorviaShowTextInfo& info, const QRectF& content, double width) {
  return goesLeft(info) ? Way{info.x * width, info.scrollEndX * width - content.width()}
                        : Way{info.x * width - content.width(), info.scrollEndX * width};
}

double roundMs(const tagKorviaShowTextInfo& info) {
  return static_cast<double>(info.scrollTime) * 1000;
}

}  // namespace

double CrawlLayers::moveOf(const tagKorviaShowTextInfo& info, const QRectF& content, double width,
                           double shownMs) {
  if (!isCrawl(info) || !std::isfinite(info.scrollEndX))
    return 0;
  const Way way = wayOf(info, content, width);
  const double rounds = shownMs / roundMs(info);
  return way.first + (way.last - way.first) * (rounds - std::floor(rounds)) - content.left();
}

void CrawlLayers::take(LayerRef& layer) {
  isDrawing_ = false;
  if (layer)
    (shown_ ? spare_ : shown_).swap(layer);
}

CrawlLayers::Range CrawlLayers::visible(const tagKorviaShowTextInfo& info, FrameSize bus,
                                        double shownMs) const {
  const QRectF& content = shown_->content;
  const double left = content.left() + moveOf(info, content, bus.width, shownMs);
  const auto within = [&content](double place) { return std::clamp(place, 0.0, content.width()); };
  return {static_cast<int>(std::floor(within(-left))), static_cast<int>(std::ceil(within(bus.width - left)))};
}

bool CrawlLayers::covers(const LayerRef& layer, const Range& range, int revision) {
  return layer && layer->part.revision == revision &&
         (range.isEmpty() || (layer->part.begin <= range.begin && layer->part.end >= range.end));
}

TextPart CrawlLayers::partAround(const Range& range, const tagKorviaShowTextInfo& info, FrameSize bus) const {
  const QRectF& content = shown_->content;
  const Way way = wayOf(info, content, bus.width);
  const double lasting = std::abs(way.last - way.first) / roundMs(info) * kLastingMs;
  const int ahead = static_cast<int>(std::clamp<double>(lasting, kLeastAhead, kMostAhead));
  const int width = range.end - range.begin + 2 * kMargin + ahead;
  const int begin = goesLeft(info) ? range.begin - kMargin : range.end + kMargin - width;
  return {begin, std::min(width, kMostAhead)};
}

std::optional<TextPart> CrawlLayers::follow(const tagKorviaShowTextInfo& info, FrameSize bus, double shownMs,
                                            int revision) {
  if (!shown_) {
    if (std::exchange(isDrawing_, true))
      return std::nullopt;
    return TextPart{0, bus.width + kLeastAhead};
  }
  const Range now = visible(info, bus, shownMs);
  if (!covers(shown_, now, revision) && spare_ &&
      (covers(spare_, now, revision) || spare_->part.revision > shown_->part.revision))
    shown_.swap(spare_);
  if (isDrawing_)
    return std::nullopt;
  const Range soon = visible(info, bus, shownMs + kAheadMs);
  const auto isReady = [&](const Range& range) {
    return covers(shown_, range, revision) || covers(spare_, range, revision);
  };
  for (const Range& range : {now, soon}) {
    if (isReady(range))
      continue;
    isDrawing_ = true;
    return partAround(range, info, bus);
  }
  return std::nullopt;
}

void CrawlLayers::clear(std::vector<RasterWorker::Drawn>& discarded) {
  for (LayerRef* layer : {&shown_, &spare_}) {
    if (*layer)
      discarded.push_back({{}, std::move(*layer)});
    layer->reset();
  }
  isDrawing_ = false;
}

}  // namespace korvia
