#include "SignalInput.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QFile>

namespace korvia {

namespace {

// More than any card has, so that a driver that answers for ever ends.
constexpr unsigned kMostInputs = 64;

struct Signal {
  const char* name;  // as plainName() makes it
  const char* part;  // of the names of inputs; null for one that the type tells
};

constexpr Signal kSignals[] = {{"tuner", nullptr}, {"composite", "composite"}, {"svideo", "svideo"},
                               {"sdi", "sdi"},     {"component", "component"}, {"hdmi", "hdmi"}};

/// Without what drivers write differently.
QString plainName(const QString& name) {
  QString plain = name.toLower();
  for (const QChar skipped : {QLatin1Char(' '), QLatin1Char('-'), QLatin1Char('_')})
    plain.remove(skipped);
  return plain;
}

bool isOfSignal(const v4l2_input& input, const Signal& signal) {
  if (!signal.part)
    return input.type == V4L2_INPUT_TYPE_TUNER;
  const auto* text = reinterpret_cast<const char*>(input.name);
  const auto length = static_cast<int>(qstrnlen(text, sizeof(input.name)));
  return plainName(QString::fromUtf8(text, length)).contains(QLatin1String(signal.part));
}

std::vector<v4l2_input> inputsOf(int device) {
  std::vector<v4l2_input> inputs;
  for (unsigned index = 0; index < kMostInputs; ++index) {
    v4l2_input input{};
    input.index = index;
    if (::ioctl(device, VIDIOC_ENUMINPUT, &input) != 0)
      break;
    inputs.push_back(input);
  }
  return inputs;
}

}  // namespace

int findSignalInput(const std::vector<v4l2_input>& inputs, const QString& signal) {
  const QString plain = plainName(signal);
  for (const Signal& known : kSignals) {
    if (plain != QLatin1String(known.name))
      continue;
    for (const v4l2_input& input : inputs) {
      if (isOfSignal(input, known))
        return static_cast<int>(input.index);
    }
  }
  return -1;
}

bool selectSignalInput(const QString& deviceFile, const QString& signal, QString& reason) {
  if (signal.isEmpty() || plainName(signal) == QLatin1String("default"))
    return true;
  const int device = ::open(QFile::encodeName(deviceFile).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (device < 0) {
    reason = QStringLiteral("camera cannot be opened");
    return false;
  }
  int index = findSignalInput(inputsOf(device), signal);
  const bool isThere = index >= 0;
  const bool isSelected = isThere && ::ioctl(device, VIDIOC_S_INPUT, &index) == 0;
  ::close(device);
  if (!isThere)
    reason = QStringLiteral("camera has no input %1").arg(signal);
  else if (!isSelected)
    reason = QStringLiteral("camera refuses the input %1").arg(signal);
  return isSelected;
}

}  // namespace korvia
