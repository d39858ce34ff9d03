#include "CaptureShelf.h"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>
#include <utility>

namespace korvia {

namespace {

bool fits(const CaptureRequest& offered, const CaptureRequest& wanted) {
  return offered.kind == wanted.kind && offered.address == wanted.address &&
         offered.rateNumerator == wanted.rateNumerator && offered.rateDenominator == wanted.rateDenominator;
}

}  // namespace

CaptureShelf& CaptureShelf::instance() {
  static CaptureShelf shelf;
  // Static objects that the runs use go in an unknown order.
  static const bool isRegistered = [] {
    qAddPostRoutine([] { instance().close(); });
    return true;
  }();
  Q_UNUSED(isRegistered)
  return shelf;
}

CaptureShelf::~CaptureShelf() {
  close();
}

void CaptureShelf::offer(std::unique_ptr<CaptureProcess> process, const CaptureRequest& request) {
  if (process)
    put({std::move(process), request, Clock::now() + patience_});
}

void CaptureShelf::end(std::unique_ptr<CaptureProcess> process) {
  if (process)
    put({std::move(process), {}, Clock::time_point::min()});
}

void CaptureShelf::put(Offer offer) {
  {
    MutexLock lock(mutex_);
    if (!closed_) {
      changed_ = true;
      offers_.push_back(std::move(offer));
      if (!thread_.joinable())
        thread_ = std::thread([this] { run(); });
    }
  }
  wake_.notify_all();
}

std::unique_ptr<CaptureProcess> CaptureShelf::take(const CaptureRequest& request, CaptureListener& listener) {
  Offer taken;
  {
    MutexLock lock(mutex_);
    // The newest one has what the operator did last.
    const auto found = std::find_if(offers_.rbegin(), offers_.rend(), [&request](const Offer& offer) {
      return offer.until > Clock::now() && fits(offer.request, request);
    });
    if (found == offers_.rend())
      return nullptr;
    taken = std::move(*found);
    offers_.erase(std::next(found).base());
  }
  if (!taken.process->setListener(&listener))
    return nullptr;
  taken.process->resize(request.width, request.height);
  return std::move(taken.process);
}

void CaptureShelf::close() {
  std::thread thread;
  std::vector<Offer> offers;
  {
    MutexLock lock(mutex_);
    closed_ = true;
    thread.swap(thread_);
    offers.swap(offers_);
  }
  wake_.notify_all();
  if (thread.joinable())
    thread.join();
}

std::vector<CaptureShelf::Offer> CaptureShelf::takeOverdue() {
  const auto firstOverdue = std::stable_partition(
      offers_.begin(), offers_.end(), [now = Clock::now()](const Offer& offer) { return offer.until > now; });
  std::vector<Offer> overdue(std::make_move_iterator(firstOverdue), std::make_move_iterator(offers_.end()));
  offers_.erase(firstOverdue, offers_.end());
  return overdue;
}

void CaptureShelf::run() {
  MutexLock lock(mutex_);
  while (!closed_) {
    std::vector<Offer> overdue = takeOverdue();
    if (!overdue.empty()) {
      lock.unlock();
      overdue.clear();
      lock.lock();
    } else if (offers_.empty()) {
      wake_.wait(lock, [this]() REQUIRES(mutex_) { return closed_ || !offers_.empty(); });
    } else {
      changed_ = false;
      wake_.wait_until(lock, offers_.front().until,
                       [this]() REQUIRES(mutex_) { return closed_ || changed_; });
    }
  }
}

}  // namespace korvia
