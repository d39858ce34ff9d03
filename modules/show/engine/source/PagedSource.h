// The base of sources that show one of many pictures: the files of a list, the pages of a document. The
// source's thread loads the picture that is wanted and both neighbours ahead of time, so that at most three
// are kept beside the one on show. Console thread, except pullFrame: engine thread, and openItems and
// loadItem: the source's thread.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "PictureSource.h"
#include "ThreadSafety.h"

namespace korvia {

class PagedSource : public PictureSource {
 public:
  FrameRef pullFrame(int ticks) override;
  void close() override;

  /// Stays at the item, and begins its time anew.
  void stop() override;
  void setHold(bool hold) override { hold_ = hold; }
  /// Act in every state, and on hold too.
  void prev() override { step(-1); }
  void next() override { step(1); }
  void getDuration(qint64& duration) override;
  void getTime(qint64& time) override;
  void getFrameCount(qint64& frames) override;
  /// The item's place in the list; the first is at 0, the last at 100.
  void getPosition(qint64& position) override;
  void setPosition(qint64 position) override;
  int getItemCount() override;
  /// The item that was asked for last, also while it is not shown yet.
  int getItemIndex() override;

 protected:
  /// What is after the last item, and before the first.
  enum class Ends { Wrap, Stay };
  /// What happens to an item that cannot be loaded: the next one in the direction of the last step takes its
  /// place, or the picture before it stays on show.
  enum class Unreadable { Skip, KeepShown };
  struct Paging {
    Ends ends;
    Unreadable unreadable;
    std::int64_t itemNs;  ///< after which the next item follows while playing; 0 for never
  };

  PagedSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format, Paging paging);

  /// Starts the source's thread, which owns the source until it is closed. `name` is for the log.
  static void start(const std::shared_ptr<PagedSource>& source, const QString& name);

  /// Returns the number of items; 0 with a reason, and with a line in the log, when there is none.
  virtual int openItems(QString& reason) = 0;
  /// The picture of an item in the render size; null with a reason, and with a line in the log, when there is
  /// none. Called once for an item that cannot be loaded.
  virtual FrameRef loadItem(int index, QString& reason) = 0;

 private:
  struct Page {
    int index = -1;
    FrameRef frame;
  };

  void run();
  void step(int direction);
  /// Shows the wanted picture as soon as it is loaded.
  void settle() REQUIRES(pagesMutex_);
  void want(int index, int direction) REQUIRES(pagesMutex_);
  /// Takes the pages out that are not needed.
  std::array<Page, 3> dropPages() REQUIRES(pagesMutex_);
  void keep(int index, FrameRef frame) REQUIRES(pagesMutex_);
  void pass(int index, const QString& reason) REQUIRES(pagesMutex_);
  /// The item after `index` in a direction, or `index` where there is none.
  int itemBeside(int index, int direction) const REQUIRES(pagesMutex_);
  bool isSkipped(int index) const REQUIRES(pagesMutex_);
  /// The wanted item and its neighbours, the more urgent first.
  std::array<int, 3> neededItems() const REQUIRES(pagesMutex_);
  const Page* pageOf(int index) const REQUIRES(pagesMutex_);
  /// The next item to load; -1 when all that are needed are there.
  int missingItem() const REQUIRES(pagesMutex_);

  const Paging paging_;
  quint64 thread_ = 0;
  std::atomic<bool> hold_{false};
  std::atomic<qint64> shownCount_{0};
  mutable Mutex pagesMutex_;
  ConditionVariable wake_;
  bool closing_ GUARDED_BY(pagesMutex_) = false;
  int count_ GUARDED_BY(pagesMutex_) = 0;
  int wantedItem_ GUARDED_BY(pagesMutex_) = 0;
  int shownItem_ GUARDED_BY(pagesMutex_) = -1;
  int direction_ GUARDED_BY(pagesMutex_) = 1;             // of the last step
  std::int64_t ticksShown_ GUARDED_BY(pagesMutex_) = 0;   // render frames of the item on show, while playing
  std::vector<bool> unreadable_ GUARDED_BY(pagesMutex_);  // by item
  std::array<Page, 3> pages_ GUARDED_BY(pagesMutex_);
};

}  // namespace korvia
