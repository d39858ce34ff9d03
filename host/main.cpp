// The program: loads the console, tells it which product it is, and runs it.
#include <QApplication>
#include <QDir>
#include <QIcon>
#include <csignal>
#include <cstdio>
#include <optional>

#include "ConsoleLibrary.h"
#include "DisplayGuard.h"
#include "DrivePath.h"
#include "HomeFolder.h"
#include "HostLog.h"
#include "HostLogCategories.h"
#include "HostOptions.h"
#include "HostSession.h"
#include "IProgressSink.h"
#include "IncomePlace.h"
#include "KorviaCommonUtil.h"
#include "ListenPlace.h"
#include "ProductRecord.h"
#include "ShowDataPath.h"
#include "ShowDataSetup.h"
#include "SignalWatcher.h"
#include "WebDesk.h"
#include "shell/IKorviaSarnhawk.h"
#include "shell/IMainFrame.h"
#include "shell/StartChannels.h"

namespace {

/// Logs the progress of the console's start.
class ProgressLog final : public IProgressSink {
 public:
  void onProgressBegin() override { qCDebug(lcProgress, "begin"); }
  void onProgressEnd() override { qCDebug(lcProgress, "end"); }
  void onProgressText(const QString& text) override { qCDebug(lcProgress, "%s", qUtf8Printable(text)); }
};

enum ExitCode { kSuccess = 0, kFailure = 1, kUsage = 2 };

int complain(const QString& message, ExitCode code) {
  std::fprintf(stderr, "korvia: %s\n", qUtf8Printable(message));
  return code;
}

/// Runs before the QApplication is made, because help, version and refusals must work without a display.
HostCommandLine readCommandLine(int argc, char** argv) {
  QCoreApplication plain(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("korvia"));
  return HostCommandLine::parse(QCoreApplication::arguments());
}

/// Sets what console and engine read from the environment and the application. Called before they are loaded.
void publish(const HostOptions& options) {
  if (!options.engine.isEmpty())
    qputenv("KORVIA_ENGINE", options.engine.toLocal8Bit());
  if (!options.traceFile.isEmpty())
    qputenv("KORVIA_TRACE", QFile::encodeName(options.traceFile));
  // Nothing but the switch opens the machine to others.
  if (options.listenAddress.isEmpty())
    qunsetenv(korvia::kListenVariable);
  else
    qputenv(korvia::kListenVariable, options.listenAddress.toLatin1());
  if (options.publishKey.isEmpty())
    qunsetenv(korvia::kPublishKeyVariable);
  else
    qputenv(korvia::kPublishKeyVariable, options.publishKey);
  if (korvia::listensToOthers())
    qCWarning(lcSession, "listening on %s, other machines reach the servers",
              qUtf8Printable(options.listenAddress));
  else if (!options.listenAddress.isEmpty())
    qCInfo(lcSession, "listening on %s, which only this machine reaches",
           qUtf8Printable(options.listenAddress));
  qApp->setProperty("korviaOpen", options.openFiles);
}

/// Tells on the terminal how the operator's page is opened. The log does not get the address, because it
/// contains the token that commands need.
void announcePage() {
  const QString address = korvia::WebDesk::instance().pageAddress(KorviaCommonUtil::getIp());
  if (address.isEmpty())
    return;
  std::printf("operator's page : %s\n", qUtf8Printable(address));
  std::fflush(stdout);
}

int runConsole(const HostOptions& options, korvia::HostLog& log) {
  korvia::ConsoleLibrary library(QCoreApplication::applicationDirPath());
  IKorviaSarnhawk* console = library.createConsole();
  if (!console)
    return complain(library.error(), kFailure);
  auto* frame = static_cast<IMainFrame*>(console->queryInterface(&kIMainFrameId, kInterfaceVersion));
  if (!frame)
    return complain(QStringLiteral("the console has no window"), kFailure);

  korvia::HostSession session(frame->getWidget(), options);
  korvia::SignalWatcher signalWatcher;
  QObject::connect(&signalWatcher, &korvia::SignalWatcher::closeRequested, &session,
                   &korvia::HostSession::requestClose);
  QObject::connect(&signalWatcher, &korvia::SignalWatcher::hungUp, [&] {
    log.leaveTerminal();
    session.onHangUp();
  });
  ProgressLog progress;
  const tagKorviaProductInfo product = makeProductRecord();
  int exitCode = kFailure;
  const bool created = console->create(nullptr, &progress, nullptr, &product, options.rootPath);
  announcePage();
  if (created)
    exitCode = session.run();
  console->close();
  console->release();
  return exitCode;
}

/// Qt and other libraries read HOME. With a home of "/" they would write the operator's files there.
void setHome() {
  qputenv("HOME", QFile::encodeName(korvia::homeFolder()));
}

}  // namespace

int main(int argc, char** argv) {
  // A reader of the standard streams may end at any time, and SIGPIPE would end the program then.
  std::signal(SIGPIPE, SIG_IGN);
  setHome();
  const HostCommandLine commandLine = readCommandLine(argc, argv);
  if (commandLine.outcome == HostCommandLine::Outcome::Refuse)
    return complain(commandLine.text + QStringLiteral("\nTry \"korvia --help\"."), kUsage);
  if (commandLine.outcome == HostCommandLine::Outcome::Inform) {
    std::fputs(qUtf8Printable(commandLine.text), stdout);
    return kSuccess;
  }
  const HostOptions& options = commandLine.options;
  const QString channelRefusal = options.channelRefusal(korvia::kMediaChannelsAtStart);
  if (!channelRefusal.isEmpty())
    return complain(channelRefusal, kUsage);
  if (!options.listenAddress.isEmpty() && !korvia::isOwnAddress(options.listenAddress))
    return complain(QStringLiteral("--listen: this machine has no address %1").arg(options.listenAddress),
                    kUsage);
  if (!QDir().mkpath(options.rootPath))
    return complain(QStringLiteral("the folder %1 cannot be made").arg(options.rootPath), kUsage);

  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  korvia::HostLog& log = korvia::HostLog::start(korvia::HostLog::defaultFileName());
  std::optional<korvia::DisplayGuard> displayGuard(std::in_place);
  QApplication application(argc, argv);
  displayGuard.reset();
  const QString folder = QCoreApplication::applicationDirPath();
  QApplication::setApplicationName(QStringLiteral("korvia"));
  QApplication::setApplicationVersion(QStringLiteral(KORVIA_VERSION));
  QApplication::setWindowIcon(QIcon(folder + QStringLiteral("/icon-256.png")));
  publish(options);
  korvia::copyMissingFiles(folder + QStringLiteral("/../showdata"),
                           korvia::DrivePath::resolve(QString::fromLatin1(korvia::kShowDataDrivePath)));
  return runConsole(options, log);
}
