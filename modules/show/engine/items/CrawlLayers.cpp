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
/// Crawls from or to farther away, in pictures, stand.
constexpr double kFarthest = 1e4;

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
  // Also false for what is no number.
  const bool isSane = std::abs(info.x) < kFarthest && std::abs(info.scrollEndX) < kFarthest;
  if (!isCrawl(info) || !isSane)
    return 0;
  const Way way = wayOf(info, content, width);
  const double rounds = shownMs / roundMs(info);
  const double part = std::isfinite(rounds) ? rounds - std::floor(rounds) : 0;
  return way.first + (way.last - way.first) * part - content.left();
}

const LayerRef& CrawlLayers::shown() const {
  static const LayerRef kNothing;
  return shown_.layer && shown_.layer->picture ? shown_.layer : kNothing;
}

void CrawlLayers::take(LayerRef& layer) {
  const CrawlPart part = layer ? layer->part : drawing_.value_or(CrawlPart());
  drawing_.reset();
  if (layer)
    content_ = layer->content;
  Drawn& place = shown_.isDrawn ? spare_ : shown_;
  place.layer.swap(layer);
  place.part = part;
  place.isDrawn = true;
}

CrawlLayers::Range CrawlLayers::visible(const tagKorviaShowTextInfo& info, FrameSize bus,
                                        double shownMs) const {
  const double left = content_.left() + moveOf(info, content_, bus.width, shownMs);
  const auto within = [this](double place) { return std::clamp(place, 0.0, content_.width()); };
  return {static_cast<int>(std::floor(within(-left))), static_cast<int>(std::ceil(within(bus.width - left)))};
}

bool CrawlLayers::Drawn::covers(const Range& range, int revision) const {
  return isDrawn && part.revision == revision &&
         (range.isEmpty() || (part.begin <= range.begin && part.end >= range.end));
}

TextPart CrawlLayers::partAround(const Range& range, const tagKorviaShowTextInfo& info, FrameSize bus) const {
  const Way way = wayOf(info, content_, bus.width);
  const double lasting = std::abs(way.last - way.first) / roundMs(info) * kLastingMs;
  const int ahead = static_cast<int>(std::clamp<double>(lasting, kLeastAhead, kMostAhead));
  const int width = range.end - range.begin + 2 * kMargin + ahead;
  if (goesLeft(info))
    return {range.begin - kMargin, width, TextPart::Kept::Left};
  return {range.end + kMargin - width, width, TextPart::Kept::Right};
}

TextPart CrawlLayers::beginDrawing(const TextPart& part, int revision) {
  drawing_ = CrawlPart{part.begin, part.begin + part.width, revision};
  return part;
}

std::optional<TextPart> CrawlLayers::follow(const tagKorviaShowTextInfo& info, FrameSize bus, double shownMs,
                                            int revision) {
  const Range now = visible(info, bus, shownMs);
  if (!shown_.covers(now, revision) && spare_.isDrawn &&
      (spare_.covers(now, revision) || spare_.part.revision > shown_.part.revision))
    std::swap(shown_, spare_);
  if (drawing_)
    return std::nullopt;
  if (!shown_.isDrawn)
    return beginDrawing({0, bus.width + kLeastAhead}, revision);
  const Range soon = visible(info, bus, shownMs + kAheadMs);
  for (const Range& range : {now, soon}) {
    if (!shown_.covers(range, revision) && !spare_.covers(range, revision))
      return beginDrawing(partAround(range, info, bus), revision);
  }
  return std::nullopt;
}

void CrawlLayers::clear(std::vector<RasterWorker::Drawn>& discarded) {
  for (Drawn* drawn : {&shown_, &spare_}) {
    if (drawn->layer)
      discarded.push_back({{}, std::move(drawn->layer)});
    *drawn = {};
  }
  content_ = {};
  drawing_.reset();
}

}  // namespace korvia
