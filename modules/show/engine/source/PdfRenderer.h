// Draws the pages of a PDF document on a thread of its own, so that a page that takes too long, or never
// ends, can be left behind; the document is opened again for the next page. The source's thread, except
// cancel and isCancelled: any thread.
#pragma once
#include <QImage>
#include <QSize>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>

#include "ThreadSafety.h"

namespace korvia {

class PdfRenderer {
 public:
  /// `path` is a drive path or path. The time-out is that of opening, and of each page.
  PdfRenderer(const QString& path, int timeoutMs);
  ~PdfRenderer();
  PdfRenderer(const PdfRenderer&) = delete;
  PdfRenderer& operator=(const PdfRenderer&) = delete;

  /// The number of pages; 0 with a reason.
  int open(QString& reason);
  /// The page with its aspect ratio kept, centred on black, in exactly this size; null with a reason.
  QImage page(int index, QSize size, QString& reason);
  /// Ends a call that waits; no page is drawn from now on.
  void cancel();
  bool isCancelled() const { return cancelled_; }

 private:
  class Worker;

  /// Runs the work on the worker's thread. False with a reason when it has not ended in time.
  bool runInTime(std::function<void(Worker&)> work, QString& reason);
  std::shared_ptr<Worker> startWorker(QString& reason);
  void leaveWorker();

  const QString path_;
  const int timeoutMs_;
  const std::shared_ptr<std::atomic<int>> running_;  // threads, also those that were left behind
  std::atomic<bool> cancelled_{false};
  Mutex workerMutex_;
  std::shared_ptr<Worker> worker_ GUARDED_BY(workerMutex_);
};

}  // namespace korvia
