#include "Channel.h"

#include <utility>

namespace korvia {

std::unique_ptr<ChannelStage> Channel::setStage(Stage place, std::unique_ptr<ChannelStage> stage) {
  return std::exchange(stages_[static_cast<std::size_t>(place)], std::move(stage));
}

void Channel::beginTick(FrameRef sourcePicture) {
  source_ = std::move(sourcePicture);
  progress_ = Progress::Waiting;
}

FrameRef Channel::picture(ChannelPictures& others, const FrameRef& black) {
  if (progress_ == Progress::Made)
    return picture_;
  if (progress_ == Progress::Making)
    return picture_ ? picture_ : black;
  progress_ = Progress::Making;
  FrameRef picture = source_ ? source_ : black;
  for (const std::unique_ptr<ChannelStage>& stage : stages_) {
    if (stage)
      picture = stage->apply(picture, others);
  }
  picture_ = std::move(picture);
  progress_ = Progress::Made;
  return picture_;
}

void Channel::clear() {
  source_.reset();
  picture_.reset();
  progress_ = Progress::Waiting;
}

}  // namespace korvia
