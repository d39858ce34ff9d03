// One channel: the picture of its source, changed by its stages in their order. The picture is made once a
// tick and only when somebody asks for it. Engine thread.
#pragma once
#include <array>
#include <memory>

#include "engine/channel/ChannelStage.h"

namespace korvia {

class Channel {
 public:
  /// The stages, in the order in which the picture passes them.
  enum class Stage { Look, Key, Background };

  /// Puts a stage into its place; null takes it away. Gives back what was there.
  std::unique_ptr<ChannelStage> setStage(Stage place, std::unique_ptr<ChannelStage> stage);
  /// The next tick begins, with this picture of the source; null for black.
  void beginTick(FrameRef sourcePicture);
  /// The channel's picture at this tick; `black` stands for the picture of a source that has none. A call
  /// that comes from within the making of this very picture gives that of the tick before.
  FrameRef picture(ChannelPictures& others, const FrameRef& black);
  /// Forgets all pictures.
  void clear();

 private:
  enum class Progress { Waiting, Making, Made };

  std::array<std::unique_ptr<ChannelStage>, 3> stages_;
  FrameRef source_;
  FrameRef picture_;  // of this tick when made, else the last one that was
  Progress progress_ = Progress::Waiting;
};

}  // namespace korvia
