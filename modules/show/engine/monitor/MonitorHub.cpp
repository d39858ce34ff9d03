#include "MonitorHub.h"

#include <utility>

#include "KorviaShowObjectID.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

/// The MonitorHub::Window of an object; -1 for an object without a window.
int windowOf(int objectId) {
  int index = 0;
  const int kind = getObjectKind(objectId, index);
  if (objectId == PGMObject)
    return MonitorHub::Pgm;
  if (objectId == PVMObject)
    return MonitorHub::Pvm;
  if (objectId == KaraokeObject)
    return MonitorHub::Karaoke;
  if (kind == MediaObjectKind && objectId >= MediaChannel && index < kMediaChannelMax)
    return MonitorHub::FirstMedia + index;
  if (kind == StageObjectKind && index < kStageChannelMax)
    return MonitorHub::FirstStage + index;
  return -1;
}

}  // namespace

MonitorHub::~MonitorHub() {
  close();
}

void MonitorHub::open(const tagKorviaShowWindowPackInfo& windows) {
  close();
  MutexLock lock(mutex_);
  const auto set = [this](int window, const tagKorviaWindowInfo& info) REQUIRES(mutex_) {
    slots_[window].info = info;
    slots_[window].changed = true;
    wanted_[window] = info.winId != 0;
  };
  set(Pgm, windows.pgm);
  set(Pvm, windows.pvm);
  for (int i = 0; i < static_cast<int>(windows.media.size()); ++i)
    set(FirstMedia + i, windows.media[i]);
  for (int i = 0; i < static_cast<int>(windows.stage.size()); ++i)
    set(FirstStage + i, windows.stage[i]);
  set(Karaoke, windows.karaoke);
  stop_ = false;
  thread_ = std::thread([this] { run(); });
}

void MonitorHub::close() {
  if (!thread_.joinable())
    return;
  {
    MutexLock lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
  {
    MutexLock lock(mutex_);
    for (Slot& slot : slots_)
      slot = {};
  }
  staged_ = {};
  wanted_ = {};
}

void MonitorHub::resizeObject(int objectId, const tagKorviaWindowInfo& info) {
  const int window = windowOf(objectId);
  if (window < 0 || info.winId == 0)
    return;
  wanted_[window] = true;
  MutexLock lock(mutex_);
  slots_[window].info = info;
  slots_[window].changed = true;
}

void MonitorHub::show(Window window, const FrameRef& picture, const MonitorGuides& guides) {
  if (wanted_[window])
    staged_[window] = {picture, guides};
}

void MonitorHub::commit() {
  if (!thread_.joinable())
    return;
  {
    MutexLock lock(mutex_);
    for (int i = 0; i < WindowCount; ++i) {
      if (!staged_[i].frame)
        continue;
      // The last picture was not fetched yet. Replacing it counts as a drop for a strip.
      if (slots_[i].next.frame && i >= FirstMedia)
        dropped_.fetch_add(1, std::memory_order_relaxed);
      slots_[i].next = std::exchange(staged_[i], {});
    }
    committed_ = true;
  }
  wake_.notify_all();
}

void MonitorHub::run() {
  nameThread("kv-monitor");
  runBehind();
  factory_ = makeFactory_();
  std::array<Shown, WindowCount> pictures;
  MutexLock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this]() REQUIRES(mutex_) { return stop_ || committed_; });
    if (stop_)
      break;
    committed_ = false;
    for (int i = 0; i < WindowCount; ++i) {
      Slot& slot = slots_[i];
      pictures[i] = std::exchange(slot.next, {});
      if (!slot.changed)
        continue;
      slot.changed = false;
      const tagKorviaWindowInfo info = slot.info;
      lock.unlock();
      if (info.winId == 0)
        surfaces_[i].reset();
      else if (surfaces_[i] && windowIds_[i] == info.winId)
        surfaces_[i]->resize(info);
      else
        surfaces_[i] = factory_->create(info);
      windowIds_[i] = info.winId;
      lock.lock();
    }
    lock.unlock();
    showPictures(pictures);
    lock.lock();
  }
  lock.unlock();
  shown_ = {};
  for (std::unique_ptr<MonitorSurface>& surface : surfaces_)
    surface.reset();
  factory_.reset();
}

void MonitorHub::showPictures(std::array<Shown, WindowCount>& pictures) {
  StageClock::Scope scope(stages_, StageClock::Monitors);
  for (int i = 0; i < WindowCount; ++i) {
    // An unchanged picture is still on the screen.
    const bool isNew = pictures[i].frame && pictures[i] != shown_[i];
    if (surfaces_[i] && (isNew || (pictures[i].frame && surfaces_[i]->isLost())))
      surfaces_[i]->show(*pictures[i].frame, pictures[i].guides);
    if (pictures[i].frame)
      shown_[i] = std::move(pictures[i]);
    // Program and preview are shown. When the next frame is here already, the strips of this one are
    // dropped.
    pictures[i] = {};
    if (i + 1 >= FirstMedia && i + 1 < WindowCount && pictures[i + 1].frame) {
      MutexLock lock(mutex_);
      if (!committed_)
        continue;
      for (int rest = i + 1; rest < WindowCount; ++rest) {
        dropped_.fetch_add(pictures[rest].frame ? 1 : 0, std::memory_order_relaxed);
        pictures[rest] = {};
      }
      break;
    }
  }
  factory_->flush();
}

}  // namespace korvia
