// One window that shows pictures. Made and used on the monitor thread.
#pragma once
#include <memory>

#include "engine/frame/Frame.h"
#include "tagKorviaWindowInfo.h"

namespace korvia {

class MonitorSurface {
 public:
  virtual ~MonitorSurface() = default;
  /// The window changed its size.
  virtual void resize(const tagKorviaWindowInfo& window) = 0;
  /// Shows the picture, centred, black around it.
  virtual void show(const Frame& picture) = 0;
  /// Whether what was shown last may not be on the screen any more, so that it must be shown again although
  /// it did not change.
  virtual bool isLost() const = 0;
};

/// Makes the surfaces of one kind of desktop. Monitor thread.
class MonitorSurfaceFactory {
 public:
  virtual ~MonitorSurfaceFactory() = default;
  virtual std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) = 0;
  /// After the pictures of one frame: sends them off and waits until their memory is free again.
  virtual void flush() = 0;
};

/// X11 windows drawn straight with shared memory when the program runs on X11, widgets otherwise.
std::unique_ptr<MonitorSurfaceFactory> createMonitorSurfaceFactory();

}  // namespace korvia
