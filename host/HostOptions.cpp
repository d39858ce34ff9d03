#include "HostOptions.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "HomeFolder.h"
#include "ListenPlace.h"

namespace {

constexpr int kMaxSide = 16384;
constexpr double kMaxExitAfterS = 1e6;

const QCommandLineOption kRoot("root", "Data folder, made when it is not there. Default: ~/Korvia", "DIR");
const QCommandLineOption kEngine("engine", "Engine behind the console: software (default) or silent.",
                                 "software|silent");
const QCommandLineOption kTrace("trace",
                                "Writes what console and engine tell each other, a JSON object a line.",
                                "FILE");
const QCommandLineOption kOpen(
    "open",
    "Opens a film, a picture or the address of a stream on media channel N (0 is the first). Repeatable.",
    "N=FILE");
const QCommandLineOption kExitAfter("exit-after", "Closes in the orderly way after this time.", "SECONDS");
const QCommandLineOption kScreenshot("screenshot",
                                     "Writes a picture of the window (png, jpg, bmp) at the exit.", "FILE");
const QCommandLineOption kListen("listen",
                                 "Lets other machines reach the servers at this IPv4 address of the machine, "
                                 "0.0.0.0 for all of them. Default: this machine alone",
                                 "ADDRESS");
const QCommandLineOption kPublishKeyFile(
    "publish-key-file",
    "Asks those who push a stream for the key in the first line of the file: "
    "rtmp://HOST:1935/income/NAME?key=KEY.",
    "FILE");
const QCommandLineOption kSize("size", "Size of the window in pixels.", "WxH");

/// Reads one option's value into `options`. Returns why the value is refused, or an empty text.
using Reader = QString (*)(const QString& value, HostOptions& options);

bool isInFolder(const QString& file) {
  return QFileInfo(QFileInfo(file).absolutePath()).isDir();
}

QString readRoot(const QString& value, HostOptions& options) {
  const QFileInfo folder(value);
  if (value.isEmpty() || (folder.exists() && !folder.isDir()))
    return QStringLiteral("\"%1\" is no folder").arg(value);
  options.rootPath = QDir::cleanPath(folder.absoluteFilePath());
  if (!options.rootPath.endsWith(QLatin1Char('/')))
    options.rootPath += QLatin1Char('/');
  return QString();
}

QString readEngine(const QString& value, HostOptions& options) {
  if (value != QLatin1String("software") && value != QLatin1String("silent"))
    return QStringLiteral("there is no engine \"%1\", only software and silent").arg(value);
  options.engine = value;
  return QString();
}

QString readTrace(const QString& value, HostOptions& options) {
  if (value.isEmpty() || !isInFolder(value) || QFileInfo(value).isDir())
    return QStringLiteral("no file can be written at \"%1\"").arg(value);
  options.traceFile = QFileInfo(value).absoluteFilePath();
  return QString();
}

QString readOpen(const QString& value, HostOptions& options) {
  static const QRegularExpression form(QStringLiteral("^(\\d+)=(.+)$"),
                                       QRegularExpression::DotMatchesEverythingOption);
  const QRegularExpressionMatch match = form.match(value);
  if (!match.hasMatch())
    return QStringLiteral("\"%1\" is not N=FILE").arg(value);
  // Which channels there are, only the show knows: channelRefusal().
  bool isNumber = false;
  const int channel = match.captured(1).toInt(&isNumber);
  const QString key = isNumber ? QString::number(channel) : match.captured(1);
  // A missing file is not refused: the channel shows the error and the show runs without it.
  static const QRegularExpression address(QStringLiteral("^[a-z]{2,}://"));
  const QString what = match.captured(2);
  options.openFiles.insert(key, address.match(what).hasMatch() ? what : QFileInfo(what).absoluteFilePath());
  return QString();
}

QString readExitAfter(const QString& value, HostOptions& options) {
  bool isNumber = false;
  const double seconds = value.toDouble(&isNumber);
  if (!isNumber || !std::isfinite(seconds) || seconds < 0 || seconds > kMaxExitAfterS)
    return QStringLiteral("\"%1\" is no number of seconds").arg(value);
  options.exitAfterS = seconds;
  return QString();
}

QString readScreenshot(const QString& value, HostOptions& options) {
  static const QStringList formats{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                   QStringLiteral("bmp")};
  const QFileInfo file(value);
  if (!formats.contains(file.suffix().toLower()))
    return QStringLiteral("\"%1\" does not end in .png, .jpg or .bmp").arg(value);
  if (!isInFolder(value) || file.isDir())
    return QStringLiteral("no file can be written at \"%1\"").arg(value);
  options.screenshotFile = file.absoluteFilePath();
  return QString();
}

QString readSize(const QString& value, HostOptions& options) {
  static const QRegularExpression form(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
  const QRegularExpressionMatch match = form.match(value);
  const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
  if (!match.hasMatch() || size.isEmpty() || size.width() > kMaxSide || size.height() > kMaxSide)
    return QStringLiteral("\"%1\" is no size such as 1280x720").arg(value);
  options.size = size;
  return QString();
}

QString readListen(const QString& value, HostOptions& options) {
  if (!korvia::isListenAddress(value))
    return QStringLiteral("\"%1\" is no IPv4 address such as 192.0.2.1").arg(value);
  options.listenAddress = value;
  return QString();
}

/// The key is not in what is said of it, because the text goes to a terminal.
QString readPublishKeyFile(const QString& value, HostOptions& options) {
  constexpr int kMaxBytes = 128;
  constexpr int kMaxLineBytes = 4 * kMaxBytes;
  QFile file(value);
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
    return QStringLiteral("\"%1\" cannot be read").arg(value);
  const QByteArray key = file.readLine(kMaxLineBytes).trimmed();
  const bool isUsable = std::all_of(key.begin(), key.end(),
                                    [](char c) { return c > ' ' && c <= '~' && !std::strchr("&?#/", c); });
  if (key.isEmpty() || key.size() > kMaxBytes || !isUsable)
    return QStringLiteral(
               "the first line of \"%1\" is no key of 1 to 128 characters without & ? # / and blanks")
        .arg(value);
  options.publishKey = key;
  return QString();
}

struct OptionReader {
  const QCommandLineOption& option;
  Reader read;
};

const OptionReader kReaders[] = {
    {kRoot, readRoot}, {kEngine, readEngine},       {kTrace, readTrace},
    {kOpen, readOpen}, {kExitAfter, readExitAfter}, {kScreenshot, readScreenshot},
    {kSize, readSize}, {kListen, readListen},       {kPublishKeyFile, readPublishKeyFile},
};

HostCommandLine answer(HostCommandLine::Outcome outcome, const QString& text) {
  HostCommandLine commandLine;
  commandLine.outcome = outcome;
  commandLine.text = text;
  return commandLine;
}

}  // namespace

QString HostOptions::channelRefusal(int mediaChannels) const {
  for (auto file = openFiles.cbegin(); file != openFiles.cend(); ++file) {
    bool isNumber = false;
    if (file.key().toInt(&isNumber) >= mediaChannels || !isNumber)
      return QStringLiteral("--open: there is no media channel %1, the show has the channels 0 to %2")
          .arg(file.key())
          .arg(mediaChannels - 1);
  }
  return QString();
}

HostCommandLine HostCommandLine::parse(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Live video switcher for one operator at a desk."));
  // The parser's own help option would add an option for the arguments of Qt.
  const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                QStringLiteral("Shows this text."));
  parser.addOption(help);
  const QCommandLineOption version = parser.addVersionOption();
  for (const OptionReader& reader : kReaders)
    parser.addOption(reader.option);

  if (!parser.parse(arguments))
    return answer(Outcome::Refuse, parser.errorText());
  if (parser.isSet(help))
    return answer(Outcome::Inform, parser.helpText());
  if (parser.isSet(version))
    return answer(Outcome::Inform, QStringLiteral("korvia " KORVIA_VERSION "\n"));
  if (!parser.positionalArguments().isEmpty())
    return answer(Outcome::Refuse,
                  QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().first()));

  HostCommandLine commandLine;
  readRoot(korvia::homeFolder() + QStringLiteral("/Korvia"), commandLine.options);
  for (const OptionReader& reader : kReaders) {
    for (const QString& value : parser.values(reader.option)) {
      const QString refusal = reader.read(value, commandLine.options);
      if (!refusal.isEmpty())
        return answer(Outcome::Refuse,
                      QStringLiteral("--%1: %2").arg(reader.option.names().constFirst(), refusal));
    }
  }
  return commandLine;
}
