// The layers of a crawl on one bus. A crawl can be far wider than any picture, so that only a part around
// what is visible is drawn, and the next part before it is needed. Engine thread.
#pragma once
#include <optional>
#include <vector>

#include "engine/bus/Layer.h"
#include "engine/items/RasterWorker.h"
#include "engine/items/text/TextPicture.h"
#include "tagKorviaShowTextInfo.h"

namespace korvia {

class CrawlLayers {
 public:
  static bool isCrawl(const tagKorviaShowTextInfo& info) { return info.scrollTime > 0; }
  /// How far a crawl is to the right of where it was drawn: the leading edge of the text starts at `x`, its
  /// trailing edge ends at `scrollEndX`, and then it begins again. 0 for a text that does not crawl.
  /// @param width of the bus's picture, in pixels.
  static double moveOf(const tagKorviaShowTextInfo& info, const QRectF& content, double width,
                       double shownMs);

  /// Whether one was drawn, if only to find that there is nothing to be seen.
  bool isDrawn() const { return shown_.isDrawn; }
  /// Null when there is nothing to be seen.
  const LayerRef& shown() const;
  /// Takes what was drawn, and leaves another layer that is not needed any more.
  void take(LayerRef& layer);
  /// Chooses the layer for this time. Gives the part that must be drawn now, if there is one; the caller has
  /// it drawn and gives it to take().
  std::optional<TextPart> follow(const tagKorviaShowTextInfo& info, FrameSize bus, double shownMs,
                                 int revision);
  /// Leaves all layers to be destroyed.
  void clear(std::vector<RasterWorker::Drawn>& discarded);

 private:
  struct Range {
    int begin = 0;
    int end = 0;
    bool isEmpty() const { return begin >= end; }
  };
  /// A part with its layer, which has no picture where the text is blank, and is null without a text.
  struct Drawn {
    LayerRef layer;
    CrawlPart part;
    bool isDrawn = false;

    bool covers(const Range& range, int revision) const;
  };
  Range visible(const tagKorviaShowTextInfo& info, FrameSize bus, double shownMs) const;
  TextPart partAround(const Range& range, const tagKorviaShowTextInfo& info, FrameSize bus) const;
  TextPart beginDrawing(const TextPart& part, int revision);

  Drawn shown_;
  Drawn spare_;
  /// Of the whole text, where it was drawn; empty before something of it was seen.
  QRectF content_;
  /// What is being drawn.
  std::optional<CrawlPart> drawing_;
};

}  // namespace korvia
