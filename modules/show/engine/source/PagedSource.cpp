#include "PagedSource.h"

#include <algorithm>

#include "SourceThreads.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

}  // namespace

PagedSource::PagedSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                         const tagKorviaFormatInfo& format, Paging paging)
    : PictureSource(context, info, format, Opening), paging_(paging) {}

void PagedSource::start(const std::shared_ptr<PagedSource>& source, const QString& name) {
  source->thread_ = startSourceThread(name, [source] { source->run(); });
}

// Engine thread.

FrameRef PagedSource::pullFrame(int ticks) {
  if (paging_.itemNs > 0 && getPlayState() == Playing && !hold_) {
    MutexLock lock(pagesMutex_);
    // The time of an item begins when it is shown, however long it took to load.
    if (shownItem_ == wantedItem_) {
      ticksShown_ += ticks;
      if (context().rate.nsOf(ticksShown_) >= paging_.itemNs)
        want(itemBeside(wantedItem_, 1), 1);
    }
  }
  return PictureSource::pullFrame(ticks);
}

// Console thread.

void PagedSource::close() {
  PictureSource::close();
  {
    MutexLock lock(pagesMutex_);
    closing_ = true;
  }
  wake_.notify_one();
  markSourceThreadClosing(thread_);
}

void PagedSource::stop() {
  PictureSource::stop();
  MutexLock lock(pagesMutex_);
  ticksShown_ = 0;
}

void PagedSource::step(int direction) {
  MutexLock lock(pagesMutex_);
  want(itemBeside(wantedItem_, direction), direction);
}

void PagedSource::getDuration(qint64& duration) {
  MutexLock lock(pagesMutex_);
  duration = paging_.itemNs * count_ / kTenthMsNs;
}

void PagedSource::getTime(qint64& time) {
  MutexLock lock(pagesMutex_);
  const std::int64_t ofItem = std::min(context().rate.nsOf(ticksShown_), paging_.itemNs);
  time = (paging_.itemNs * wantedItem_ + ofItem) / kTenthMsNs;
}

void PagedSource::getFrameCount(qint64& frames) {
  frames = shownCount_;
}

void PagedSource::getPosition(qint64& position) {
  MutexLock lock(pagesMutex_);
  const int last = count_ - 1;
  position = last > 0 ? (wantedItem_ * qint64{100} + last / 2) / last : 0;
}

void PagedSource::setPosition(qint64 position) {
  MutexLock lock(pagesMutex_);
  if (count_ < 1)
    return;
  const int index = static_cast<int>((std::clamp<qint64>(position, 0, 100) * (count_ - 1) + 50) / 100);
  const int direction = index < wantedItem_ ? -1 : 1;
  want(isSkipped(index) ? itemBeside(index, direction) : index, direction);
}

int PagedSource::getItemCount() {
  MutexLock lock(pagesMutex_);
  return std::max(1, count_);
}

int PagedSource::getItemIndex() {
  MutexLock lock(pagesMutex_);
  return wantedItem_;
}

// Any thread.

void PagedSource::want(int index, int direction) {
  wantedItem_ = index;
  direction_ = direction;
  ticksShown_ = 0;
  settle();
  wake_.notify_one();
}

void PagedSource::settle() {
  const Page* page = wantedItem_ == shownItem_ ? nullptr : pageOf(wantedItem_);
  if (!page)
    return;
  shownItem_ = wantedItem_;
  ticksShown_ = 0;
  ++shownCount_;
  showPicture(page->frame);
}

int PagedSource::itemBeside(int index, int direction) const {
  int item = index;
  for (int tried = 1; tried < count_; ++tried) {
    item += direction;
    if (paging_.ends == Ends::Wrap)
      item = (item + count_) % count_;
    else if (item < 0 || item >= count_)
      return index;
    if (!isSkipped(item))
      return item;
  }
  return index;
}

bool PagedSource::isSkipped(int index) const {
  return paging_.unreadable == Unreadable::Skip && unreadable_[static_cast<std::size_t>(index)];
}

std::array<int, 3> PagedSource::neededItems() const {
  return {wantedItem_, itemBeside(wantedItem_, direction_), itemBeside(wantedItem_, -direction_)};
}

const PagedSource::Page* PagedSource::pageOf(int index) const {
  const auto found =
      std::find_if(pages_.begin(), pages_.end(), [index](const Page& page) { return page.index == index; });
  return found == pages_.end() ? nullptr : &*found;
}

int PagedSource::missingItem() const {
  for (int index : neededItems()) {
    if (!pageOf(index) && !unreadable_[static_cast<std::size_t>(index)])
      return index;
  }
  return -1;
}

// The source's thread.

void PagedSource::run() {
  QString reason;
  const int count = openItems(reason);
  if (count < 1) {
    fail(reason);
    return;
  }
  MutexLock lock(pagesMutex_);
  count_ = count;
  unreadable_.assign(static_cast<std::size_t>(count), false);
  while (!closing_) {
    const int index = missingItem();
    if (index < 0) {
      wake_.wait(lock, [this]() REQUIRES(pagesMutex_) { return closing_ || missingItem() >= 0; });
      continue;
    }
    // Makes room before the picture is loaded, so that there are never four.
    std::array<Page, 3> dropped = dropPages();
    lock.unlock();
    dropped = {};  // frees them outside of the lock
    FrameRef frame = loadItem(index, reason);
    lock.lock();
    if (frame)
      keep(index, std::move(frame));
    else
      pass(index, reason);
  }
}

std::array<PagedSource::Page, 3> PagedSource::dropPages() {
  const std::array<int, 3> needed = neededItems();
  std::array<Page, 3> dropped;
  for (std::size_t i = 0; i < pages_.size(); ++i) {
    if (std::find(needed.begin(), needed.end(), pages_[i].index) == needed.end())
      std::swap(dropped[i], pages_[i]);
  }
  return dropped;
}

void PagedSource::keep(int index, FrameRef frame) {
  const std::array<int, 3> needed = neededItems();
  // The operator may have gone on while the picture was loaded.
  if (std::find(needed.begin(), needed.end(), index) == needed.end())
    return;
  for (Page& page : pages_) {
    if (std::find(needed.begin(), needed.end(), page.index) == needed.end()) {
      page = {index, std::move(frame)};
      break;
    }
  }
  settle();
}

void PagedSource::pass(int index, const QString& reason) {
  unreadable_[static_cast<std::size_t>(index)] = true;
  if (paging_.unreadable == Unreadable::KeepShown) {
    if (index == wantedItem_)
      fail(reason);
    return;
  }
  if (std::find(unreadable_.begin(), unreadable_.end(), false) == unreadable_.end()) {
    fail(count_ == 1 ? reason : QStringLiteral("none of %1 can be shown : %2").arg(count_).arg(reason));
    return;
  }
  if (index == wantedItem_)
    want(itemBeside(index, direction_), direction_);
}

}  // namespace korvia
