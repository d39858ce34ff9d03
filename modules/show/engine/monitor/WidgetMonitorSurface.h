// Shows pictures on a widget through its slot setMonitorImage(QImage), for desktops on which the engine
// cannot draw into the window itself. Monitor thread; the widget is only used on its own thread.
#pragma once
#include <atomic>
#include <memory>

#include "engine/monitor/MonitorSurface.h"
#include "engine/monitor/PictureScaler.h"

namespace korvia {

class WidgetMonitorSurface final : public MonitorSurface {
 public:
  explicit WidgetMonitorSurface(const tagKorviaWindowInfo& window) : window_(window) {}
  void resize(const tagKorviaWindowInfo& window) override {
    window_ = window;
    lost_ = true;
  }
  void show(const Frame& picture, const MonitorGuides& guides) override;
  bool isLost() const override { return lost_; }

 private:
  tagKorviaWindowInfo window_;
  bool lost_ = true;  // a widget that has a picture paints it again by itself
  PictureScaler scaler_;
  // At most one picture is queued for the widget; others are dropped until it was taken.
  std::shared_ptr<std::atomic<bool>> underWay_ = std::make_shared<std::atomic<bool>>(false);
};

class WidgetMonitorSurfaceFactory final : public MonitorSurfaceFactory {
 public:
  std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) override {
    return std::make_unique<WidgetMonitorSurface>(window);
  }
  void flush() override {}
};

}  // namespace korvia
