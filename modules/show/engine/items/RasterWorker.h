// Draws layers on its own thread, so that neither the engine thread nor the console draws or converts
// images. All layers are drawn here; drawing functions use QImage only.
#pragma once
#include <QString>
#include <functional>
#include <thread>
#include <vector>

#include "ThreadSafety.h"
#include "engine/bus/Layer.h"

namespace korvia {

class RasterWorker {
 public:
  /// Called on the thread of the worker. Returns null when nothing is visible.
  using Draw = std::function<LayerRef()>;

  struct Drawn {
    QString key;
    LayerRef layer;
  };

  RasterWorker();
  /// Waits for the drawing that has begun.
  ~RasterWorker();
  RasterWorker(const RasterWorker&) = delete;
  RasterWorker& operator=(const RasterWorker&) = delete;

  /// Requests the next layer of the key. The newest request of a key wins: it replaces one that has not
  /// begun, in its place in the queue. A drawing that has begun is delivered, so that requests that come
  /// faster than they are drawn still show something. Any thread.
  void request(const QString& key, Draw draw);
  /// Withdraws the requests of the key: layers that were not collected are discarded, and a null layer is
  /// delivered. Any thread.
  void withdraw(const QString& key);

  /// Swaps what was drawn since the last call into `drawn`, the newest layer of each key. The former content
  /// of `drawn` is destroyed on the thread of the worker, so leave the replaced layers there. Engine thread.
  void collect(std::vector<Drawn>& drawn);

 private:
  struct Request {
    QString key;
    Draw draw;
  };

  void run();
  void deliver(const QString& key, LayerRef layer) REQUIRES(mutex_);

  Mutex mutex_;
  ConditionVariable wake_;
  std::vector<Request> requests_ GUARDED_BY(mutex_);  // a few, the oldest first
  std::vector<Drawn> drawn_ GUARDED_BY(mutex_);
  std::vector<Drawn> discarded_ GUARDED_BY(mutex_);
  QString drawing_ GUARDED_BY(mutex_);  // key of what is being drawn
  bool drawingWithdrawn_ GUARDED_BY(mutex_) = false;
  bool stop_ GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace korvia
