// Lists the sound outputs of this machine. Usable from any thread; blocks its caller for at most two seconds.
#pragma once
#include <QString>
#include <QStringList>

class GLAudioDeviceInfo {
 public:
  /// Display names of the sound outputs, each once, in the order in which the system gives them.
  /// "dsound", and an empty text, stand for whatever the machine has; another text ("alsa", "pulse") keeps
  /// the devices of that interface. Empty, with a log line, when there is none or the sound system hangs.
  static QStringList enumAudioDeviceList(const QString& driver);
};
