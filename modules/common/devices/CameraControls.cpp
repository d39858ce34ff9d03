#include "CameraControls.h"

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QFormLayout>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cerrno>

#include "DeviceId.h"

namespace korvia {

namespace {

constexpr QSize kWindowSize(420, 480);

class V4l2ControlPort final : public CameraControlPort {
 public:
  explicit V4l2ControlPort(int descriptor) : descriptor_(descriptor) {}
  ~V4l2ControlPort() override { ::close(descriptor_); }
  V4l2ControlPort(const V4l2ControlPort&) = delete;
  V4l2ControlPort& operator=(const V4l2ControlPort&) = delete;

  std::vector<CameraControl> controls() override {
    std::vector<CameraControl> found;
    v4l2_queryctrl query{};
    query.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    while (call(VIDIOC_QUERYCTRL, &query)) {
      if (!(query.flags & (V4L2_CTRL_FLAG_DISABLED | V4L2_CTRL_FLAG_READ_ONLY | V4L2_CTRL_FLAG_INACTIVE)))
        append(query, found);
      query.id |= V4L2_CTRL_FLAG_NEXT_CTRL;
    }
    return found;
  }

  bool set(quint32 id, int value) override {
    v4l2_control control{id, value};
    return call(VIDIOC_S_CTRL, &control);
  }

 private:
  bool call(unsigned long request, void* argument) const {
    int result = 0;
    do {
      result = ::ioctl(descriptor_, request, argument);
    } while (result < 0 && errno == EINTR);
    return result == 0;
  }

  void append(const v4l2_queryctrl& query, std::vector<CameraControl>& found) const {
    CameraControl control;
    switch (query.type) {
      case V4L2_CTRL_TYPE_INTEGER:
        break;
      case V4L2_CTRL_TYPE_BOOLEAN:
        control.kind = CameraControl::Kind::Switch;
        break;
      case V4L2_CTRL_TYPE_MENU:
        control.kind = CameraControl::Kind::Menu;
        break;
      default:
        return;
    }
    v4l2_control current{query.id, 0};
    if (!call(VIDIOC_G_CTRL, &current))
      return;
    control.id = query.id;
    control.name = QString::fromLatin1(reinterpret_cast<const char*>(query.name));
    control.minimum = query.minimum;
    control.maximum = query.maximum;
    control.step = std::max(1, query.step);
    control.value = current.value;
    if (control.kind == CameraControl::Kind::Menu)
      appendMenu(control);
    found.push_back(std::move(control));
  }

  void appendMenu(CameraControl& control) const {
    for (int index = control.minimum; index <= control.maximum; ++index) {
      v4l2_querymenu entry{};
      entry.id = control.id;
      entry.index = static_cast<quint32>(index);
      // Drivers leave gaps in their menus.
      if (!call(VIDIOC_QUERYMENU, &entry))
        continue;
      control.menuTexts.append(QString::fromLatin1(reinterpret_cast<const char*>(entry.name)));
      control.menuValues.push_back(index);
    }
  }

  int descriptor_;
};

QWidget* fieldOf(const CameraControl& control, CameraControlPort* port, QWidget* parent) {
  const quint32 id = control.id;
  if (control.kind == CameraControl::Kind::Switch) {
    auto* box = new QCheckBox(parent);
    box->setChecked(control.value != 0);
    QObject::connect(box, &QCheckBox::toggled, parent, [port, id](bool on) { port->set(id, on ? 1 : 0); });
    return box;
  }
  if (control.kind == CameraControl::Kind::Menu) {
    auto* combo = new QComboBox(parent);
    for (int n = 0; n < control.menuTexts.size(); ++n)
      combo->addItem(control.menuTexts[n], control.menuValues[static_cast<std::size_t>(n)]);
    combo->setCurrentIndex(combo->findData(control.value));
    QObject::connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), parent,
                     [port, id, combo] { port->set(id, combo->currentData().toInt()); });
    return combo;
  }
  auto* spin = new QSpinBox(parent);
  spin->setRange(control.minimum, control.maximum);
  spin->setSingleStep(control.step);
  spin->setValue(control.value);
  QObject::connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), parent,
                   [port, id](int value) { port->set(id, value); });
  return spin;
}

}  // namespace

std::unique_ptr<CameraControlPort> openCameraControls(const QString& file) {
  const int descriptor =
      file.isEmpty() ? -1 : ::open(QFile::encodeName(file).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0)
    return nullptr;
  return std::make_unique<V4l2ControlPort>(descriptor);
}

QWidget* makeCameraControlWindow(const QString& title, std::unique_ptr<CameraControlPort> port) {
  auto* window = new QDialog(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->setWindowTitle(title);
  window->resize(kWindowSize);
  auto* scroll = new QScrollArea(window);
  scroll->setWidgetResizable(true);
  auto* fields = new QWidget(scroll);
  auto* form = new QFormLayout(fields);
  for (const CameraControl& control : port->controls())
    form->addRow(control.name, fieldOf(control, port.get(), fields));
  scroll->setWidget(fields);
  auto* layout = new QVBoxLayout(window);
  layout->addWidget(scroll);
  // The fields use the port, so it lives as long as they do.
  QObject::connect(window, &QObject::destroyed,
                   [kept = std::shared_ptr<CameraControlPort>(std::move(port))] {});
  return window;
}

bool showCameraControls(const QString& name, const QString& id) {
  std::unique_ptr<CameraControlPort> port = openCameraControls(cameraFile(id, DeviceFolders()));
  if (!port || port->controls().empty())
    return false;
  makeCameraControlWindow(name, std::move(port))->show();
  return true;
}

}  // namespace korvia
