// One window that shows pictures. Made and used on the monitor thread.
#pragma once
#include <memory>

#include "engine/frame/Frame.h"
#include "engine/monitor/MonitorGuides.h"
#include "tagKorviaWindowInfo.h"

namespace korvia {

class MonitorSurface {
 public:
  virtual ~MonitorSurface() = default;
  /// The window changed its size.
  virtual void resize(const tagKorviaWindowInfo& window) = 0;
  /// Shows the picture letterboxed, with the guides over it.
  virtual void show(const Frame& picture, const MonitorGuides& guides) = 0;
  /// Whether the screen may have lost the last picture, so that it must be shown again although it did not
  /// change.
  virtual bool isLost() const = 0;
};

/// Makes the surfaces of one kind of desktop. Monitor thread.
class MonitorSurfaceFactory {
 public:
  virtual ~MonitorSurfaceFactory() = default;
  virtual std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) = 0;
  /// Called after the pictures of a frame: sends them and waits until their memory can be reused.
  virtual void flush() = 0;
};

/// Surfaces that draw into X11 windows directly when the program runs on X11, surfaces of widgets otherwise.
std::unique_ptr<MonitorSurfaceFactory> createMonitorSurfaceFactory();

}  // namespace korvia
