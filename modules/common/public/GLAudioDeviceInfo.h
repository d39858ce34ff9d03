// Lists the sound outputs of this machine. Usable from any thread; blocks for at most two seconds.
#pragma once
#include <QString>
#include <QStringList>

class GLAudioDeviceInfo {
 public:
  /// Display names of the sound outputs, each once, in the order of the system. "dsound" and an empty text
  /// select all outputs; another text ("alsa", "pulse") selects the outputs of that interface. Empty, with a
  /// log line, when there is none or the sound system hangs.
  static QStringList enumAudioDeviceList(const QString& driver);
};
