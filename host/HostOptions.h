// The options of the command line. Plain values, any thread; parse() is called before the application object
// is made.
#pragma once
#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

struct HostOptions {
  QString rootPath;  ///< absolute, ends in a separator
  QString engine;    ///< "software", "silent", or empty for the environment's choice
  QString traceFile;
  QVariantMap openFiles;  ///< decimal number of a media channel to the absolute path of a film or picture
  std::optional<double> exitAfterS;
  QString screenshotFile;
  QString listenAddress;  ///< numeric IPv4 address for other machines; empty for this machine alone
  QByteArray publishKey;  ///< which publishers from outside must bring; empty for none
  QSize size;             ///< invalid for the console's own choice

  /// Why `openFiles` does not fit a show of so many media channels; empty when it fits.
  QString channelRefusal(int mediaChannels) const;
};

struct HostCommandLine {
  enum class Outcome { Run, Inform, Refuse };

  Outcome outcome = Outcome::Run;
  HostOptions options;  ///< for Run
  QString text;         ///< for Inform the text to print, for Refuse the reason

  /// `arguments` begins with the program's name. Makes no files or folders.
  static HostCommandLine parse(const QStringList& arguments);
};
