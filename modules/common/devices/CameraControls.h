// The controls of a camera (brightness, exposure, ...) as its V4L2 driver offers them, and the window that
// sets them.
#pragma once
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class QWidget;

namespace korvia {

struct CameraControl {
  enum class Kind { Number, Switch, Menu };
  quint32 id = 0;
  QString name;
  Kind kind = Kind::Number;
  int minimum = 0;
  int maximum = 0;
  int step = 1;
  int value = 0;
  /// Texts of a menu and the values behind them.
  QStringList menuTexts;
  std::vector<int> menuValues;
};

/// A camera whose controls can be set. One thread at a time.
class CameraControlPort {
 public:
  virtual ~CameraControlPort() = default;
  virtual std::vector<CameraControl> controls() = 0;
  virtual bool set(quint32 id, int value) = 0;
};

/// The port of a V4L2 device file; null when it cannot be opened.
std::unique_ptr<CameraControlPort> openCameraControls(const QString& file);

/// A window with a field for each control; a change is set at once. The caller shows it. Console thread.
QWidget* makeCameraControlWindow(const QString& title, std::unique_ptr<CameraControlPort> port);

/// Opens the window for the camera with this identifier. False when the camera or its controls are not there.
/// Console thread.
bool showCameraControls(const QString& name, const QString& id);

}  // namespace korvia
