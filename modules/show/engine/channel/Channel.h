// A channel: the picture of its source, changed by its stages in their order. The picture is made at most
// once a tick, and only when it is asked for. Engine thread.
#pragma once
#include <array>
#include <memory>

#include "engine/channel/ChannelStage.h"

namespace korvia {

class Channel {
 public:
  /// The stages, in the order in which the picture passes them.
  enum class Stage { Look, Key, Background };

  /// Sets a stage, or removes it with null. Returns the stage that was there.
  std::unique_ptr<ChannelStage> setStage(Stage place, std::unique_ptr<ChannelStage> stage);
  /// The next tick begins, with this picture of the source; null for black.
  void beginTick(FrameRef sourcePicture);
  /// The channel's picture at this tick; `black` replaces the picture of a source that has none. When the
  /// making of this picture leads back to this call, the call returns the picture of the tick before.
  FrameRef picture(ChannelPictures& others, const FrameRef& black);
  /// Forgets all pictures.
  void clear();

 private:
  enum class Progress { Waiting, Making, Made };

  std::array<std::unique_ptr<ChannelStage>, 3> stages_;
  FrameRef source_;
  FrameRef picture_;  // of this tick when Made, else of the tick before
  Progress progress_ = Progress::Waiting;
};

}  // namespace korvia
