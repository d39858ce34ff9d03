// Draws pictures straight into X11 windows with shared memory, over a connection of its own, so that monitors
// keep moving while the console's thread is busy. Monitor thread.
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
  /// Null with a log line when the display has no 24-bit colour or no shared memory.
  static std::unique_ptr<X11MonitorSurfaceFactory> connect();
  ~X11MonitorSurfaceFactory() override;

  std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) override;
  void flush() override;

 private:
  friend class X11MonitorSurface;
  explicit X11MonitorSurfaceFactory(xcb_connection_t* connection) : connection_(connection) {}
  void dropEvents();
  /// Asks the server for the true size of all windows and whether they can be seen.
  void lookAtWindows();

  xcb_connection_t* connection_;
  std::vector<X11MonitorSurface*> surfaces_;
  int flushes_ = 0;
};

class X11MonitorSurface final : public MonitorSurface {
 public:
  X11MonitorSurface(X11MonitorSurfaceFactory& factory, const tagKorviaWindowInfo& window);
  ~X11MonitorSurface() override;
  void resize(const tagKorviaWindowInfo& window) override;
  void show(const Frame& picture) override;

 private:
  friend class X11MonitorSurfaceFactory;
  bool prepareImage(FrameSize size);
  void dropImage();
  void fillAround(const MonitorRect& rect);

  X11MonitorSurfaceFactory& factory_;
  xcb_connection_t* connection_;
  xcb_window_t window_;
  xcb_gcontext_t context_ = 0;
  xcb_shm_seg_t segment_ = 0;
  std::uint8_t* pixels_ = nullptr;
  FrameSize imageSize_;
  FrameSize windowSize_;
  bool visible_ = true;
  PictureScaler scaler_;
};

}  // namespace korvia
