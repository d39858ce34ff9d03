#include "FramePool.h"

namespace korvia {

void FramePoolState::giveBack(Frame* frame) {
  {
    MutexLock lock(mutex);
    if (open) {
      idle.push_back(frame);
      return;
    }
  }
  delete frame;
}

FramePool::FramePool(FrameSize size, FrameAlpha alpha)
    : size_(size), alpha_(alpha), state_(std::make_shared<FramePoolState>()) {}

FramePool::~FramePool() {
  std::vector<Frame*> idle;
  {
    MutexLock lock(state_->mutex);
    state_->open = false;
    idle.swap(state_->idle);
  }
  for (Frame* frame : idle)
    delete frame;
}

MutableFrame FramePool::acquire() {
  Frame* frame = nullptr;
  {
    MutexLock lock(state_->mutex);
    if (!state_->idle.empty()) {
      frame = state_->idle.back();
      state_->idle.pop_back();
    }
  }
  if (!frame)
    frame = new Frame(size_, alpha_);
  frame->home_ = state_;
  return MutableFrame(frame);
}

FrameRef FramePool::black() {
  MutexLock lock(blackMutex_);
  if (!black_) {
    MutableFrame frame = acquire();
    frame->fillBlack();
    black_ = std::move(frame).publish();
  }
  return black_;
}

}  // namespace korvia
