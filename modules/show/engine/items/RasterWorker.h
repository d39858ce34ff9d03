// Draws layers on a thread of its own, so that neither the engine thread nor the console draws or converts
// pictures. Whatever draws with Qt asks here; drawing functions use QImage only.
#pragma once
#include <QString>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/bus/Layer.h"

namespace korvia {

class RasterWorker {
 public:
  /// Runs on the worker's thread. Null when there is nothing to see.
  using Draw = std::function<LayerRef()>;

  struct Drawn {
    QString key;
    LayerRef layer;
  };

  RasterWorker();
  /// Waits for the drawing that is going on.
  ~RasterWorker();
  RasterWorker(const RasterWorker&) = delete;
  RasterWorker& operator=(const RasterWorker&) = delete;

  /// Asks for the key's next layer. The newest request of a key wins: one that has not begun is replaced, in
  /// its place in the queue. One that is being drawn is delivered all the same, so that requests that come
  /// faster than they can be drawn still show something. Any thread.
  void request(const QString& key, Draw draw);
  /// Ends what was asked for the key: what has not been collected never comes, and a null layer is delivered.
  /// Any thread.
  void withdraw(const QString& key);

  /// Puts what was drawn since the last call into `drawn`, the newest of each key. What `drawn` held is
  /// destroyed on the worker's thread: leave there the layers that are shown no more. Engine thread.
  void collect(std::vector<Drawn>& drawn);

 private:
  struct Request {
    QString key;
    Draw draw;
  };

  void run();
  void deliver(const QString& key, LayerRef layer);

  std::mutex mutex_;
  std::condition_variable wake_;   // with mutex_
  std::vector<Request> requests_;  // guarded by mutex_; a few, the oldest first
  std::vector<Drawn> drawn_;       // guarded by mutex_
  std::vector<Drawn> discarded_;   // guarded by mutex_
  QString drawing_;                // guarded by mutex_; key of what is being drawn
  bool drawingWithdrawn_ = false;  // guarded by mutex_
  bool stop_ = false;              // guarded by mutex_
  std::thread thread_;
};

}  // namespace korvia
