// Draws pictures directly into X11 windows over its own connection, so that monitors keep moving while the
// console thread is busy. Uses shared memory where the display can attach it, else the connection. Monitor
// thread.
#pragma once
#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <memory>
#include <vector>

#include "engine/monitor/MonitorSurface.h"
#include "engine/monitor/PictureScaler.h"

namespace korvia {

class X11MonitorSurface;

class X11MonitorSurfaceFactory final : public MonitorSurfaceFactory {
 public:
  /// Null, with a log line, when the display has no 24-bit colour. Tests once whether the display can attach
  /// shared memory: it cannot on another machine or in a container with its own IPC namespace.
  static std::unique_ptr<X11MonitorSurfaceFactory> connect();
  ~X11MonitorSurfaceFactory() override;

  std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) override;
  void flush() override;

 private:
  friend class X11MonitorSurface;
  X11MonitorSurfaceFactory(xcb_connection_t* connection, bool sharesMemory)
      : connection_(connection), sharesMemory_(sharesMemory) {}
  void handleEvents();
  /// Gets the actual size and visibility of all windows from the server.
  void queryWindows();

  xcb_connection_t* connection_;
  const bool sharesMemory_;
  std::vector<X11MonitorSurface*> surfaces_;
  int flushes_ = 0;
  bool drawn_ = false;  // something since the last flush
};

class X11MonitorSurface final : public MonitorSurface {
 public:
  X11MonitorSurface(X11MonitorSurfaceFactory& factory, const tagKorviaWindowInfo& window);
  ~X11MonitorSurface() override;
  void resize(const tagKorviaWindowInfo& window) override;
  void show(const Frame& picture, const MonitorGuides& guides) override;
  bool isLost() const override { return lost_; }

 private:
  friend class X11MonitorSurfaceFactory;
  void prepareImage(FrameSize size);
  bool shareImage(std::size_t bytes);
  void dropImage();
  void putImage(const MonitorRect& rect);
  void fillAround(const MonitorRect& rect);

  X11MonitorSurfaceFactory& factory_;
  xcb_connection_t* connection_;
  xcb_window_t window_;
  xcb_gcontext_t context_ = 0;
  xcb_shm_seg_t segment_ = 0;
  std::uint8_t* pixels_ = nullptr;       // in the shared segment or in ownPixels_
  std::vector<std::uint8_t> ownPixels_;  // where memory cannot be shared
  FrameSize imageSize_;
  FrameSize windowSize_;
  bool visible_ = true;
  bool lost_ = true;
  PictureScaler scaler_;
};

}  // namespace korvia
