#include "NginxSupervisor.h"

#include <linux/close_range.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTcpSocket>
#include <QUuid>
#include <cerrno>

#include "LoopbackPort.h"
#include "StatusBoard.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcIncome, "korvia.income", QtInfoMsg)

constexpr int kPortTries = 20;
constexpr int kLaunchTries = 3;
constexpr qint64 kReadyLimitMs = 5000;
constexpr int kPollMs = 20;
constexpr int kAnswerLimitMs = 500;
constexpr int kStopLimitMs = 2000;
constexpr int kRestartDelaysMs[] = {250, 1000, 4000, 10000, 30000};
constexpr qint64 kStableMs = 60000;
constexpr char kWorkPrefix[] = "income-";
const QString kBoardSection = QStringLiteral("incomeServer");

class BoundProcess : public QProcess {
 public:
  BoundProcess() : parent_(getpid()) {}

 protected:
  // Runs between fork and exec, where only system calls are safe.
  void setupChildProcess() override {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent_)
      _exit(1);  // the parent died before the line above took hold
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // The child must not inherit sockets and devices of the console; Qt needs its own pipe until exec.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    // Signals of a terminal are for the console, which ends the child in order.
    setpgid(0, 0);
  }

 private:
  const pid_t parent_;
};

/// The name of a working folder has the process id of its owner; the folder of a killed owner is left over.
void sweepLeftOvers(const QString& cacheFolder) {
  const QString prefix = QLatin1String(kWorkPrefix);
  const QFileInfoList folders =
      QDir(cacheFolder).entryInfoList({prefix + QLatin1Char('*')}, QDir::Dirs | QDir::NoSymLinks);
  for (const QFileInfo& folder : folders) {
    bool isNumber = false;
    const int owner = folder.fileName().mid(prefix.size()).section(QLatin1Char('-'), 0, 0).toInt(&isNumber);
    if (isNumber && owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH)
      QDir(folder.absoluteFilePath()).removeRecursively();
  }
}

std::unique_ptr<QTemporaryDir> makeFolderIn(const QString& parent) {
  if (!QDir().mkpath(parent))
    return nullptr;
  sweepLeftOvers(parent);
  auto folder = std::make_unique<QTemporaryDir>(
      QStringLiteral("%1/%2%3-XXXXXX").arg(parent, QLatin1String(kWorkPrefix)).arg(getpid()));
  const bool usable = folder->isValid() && NginxConfig::quoted(folder->path());
  return usable ? std::move(folder) : nullptr;
}

}  // namespace

NginxSupervisor::NginxSupervisor() : restartTimer_(this) {
  restartTimer_.setSingleShot(true);
  connect(&restartTimer_, &QTimer::timeout, this, &NginxSupervisor::restart);
}

NginxSupervisor::~NginxSupervisor() {
  stop();
}

void NginxSupervisor::start(const Settings& settings) {
  if (cancelled_)
    return;
  settings_ = settings;
  if (!makeWorkFolder()) {
    fail(QStringLiteral("income server has no folder to work in : %1").arg(settings_.cacheFolder));
    return;
  }
  settings_.config.workFolder = work_->path();
  settings_.config.readyToken = QUuid::createUuid().toByteArray(QUuid::Id128);
  if (launch() || cancelled_)
    return;
  stop();
  fail(QStringLiteral("income server does not come up"));
}

void NginxSupervisor::fail(const QString& reason) {
  qCWarning(lcIncome, "%s", qUtf8Printable(reason));
  publishFailure(reason);
}

bool NginxSupervisor::makeWorkFolder() {
  work_ = makeFolderIn(settings_.cacheFolder);
  if (!work_)
    work_ = makeFolderIn(QDir::tempPath());
  return work_ != nullptr;
}

bool NginxSupervisor::launch() {
  sinceStart_.start();
  for (int tries = 0; tries < kLaunchTries && !cancelled_; ++tries) {
    // Another program may take a port between its test and its use. Then the child ends, and we try again.
    bool endedEarly = false;
    if (launchOnce(kReadyLimitMs, endedEarly)) {
      sinceStart_.start();
      rtmpPort_ = settings_.config.rtmpPort;
      running_ = true;
      publish();
      return true;
    }
    if (!endedEarly)
      break;
  }
  return false;
}

bool NginxSupervisor::launchOnce(qint64 deadlineMs, bool& endedEarly) {
  NginxConfig& config = settings_.config;
  const int wantedHttp = config.httpPort;
  const int wantedRtmp = config.rtmpPort;
  config.httpPort = LoopbackPort::nextFree(wantedHttp, kPortTries);
  config.rtmpPort = LoopbackPort::nextFree(wantedRtmp, kPortTries);
  if (config.rtmpPort != 0 && config.rtmpPort == config.httpPort)
    config.rtmpPort = LoopbackPort::nextFree(config.rtmpPort + 1, kPortTries);
  if (config.httpPort == 0 || config.rtmpPort == 0) {
    qCWarning(lcIncome, "no free port for the income server from %d or %d on", wantedHttp, wantedRtmp);
    config.httpPort = wantedHttp;
    config.rtmpPort = wantedRtmp;
    return false;
  }
  if (config.httpPort != wantedHttp)
    qCWarning(lcIncome, "port %d is in use, pages take %d", wantedHttp, config.httpPort);
  if (config.rtmpPort != wantedRtmp)
    qCWarning(lcIncome, "port %d is in use, rtmp takes %d", wantedRtmp, config.rtmpPort);

  const QString configPath = work_->filePath(QStringLiteral("nginx.conf"));
  if (!writeConfig(configPath))
    return false;

  process_ = std::make_unique<BoundProcess>();
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove(QStringLiteral("NGINX"));  // would name sockets to inherit
  process_->setProcessEnvironment(environment);
  process_->setStandardInputFile(QProcess::nullDevice());
  process_->setStandardOutputFile(QProcess::nullDevice());
  process_->setWorkingDirectory(work_->path());
  connect(process_.get(), &QProcess::readyReadStandardError, this, &NginxSupervisor::logOutput);
  process_->start(settings_.program, {QStringLiteral("-e"), QStringLiteral("stderr"), QStringLiteral("-p"),
                                      work_->path() + QLatin1Char('/'), QStringLiteral("-c"), configPath});
  if (!process_->waitForStarted(static_cast<int>(kReadyLimitMs))) {
    qCWarning(lcIncome, "failed to start %s : %s", qUtf8Printable(settings_.program),
              qUtf8Printable(process_->errorString()));
    endProcess();
    return false;
  }
  if (waitUntilReady(deadlineMs)) {
    connect(process_.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &NginxSupervisor::onFinished);
    return true;
  }
  endedEarly = process_->state() == QProcess::NotRunning;
  endProcess();
  return false;
}

bool NginxSupervisor::writeConfig(const QString& path) {
  const std::optional<QByteArray> text = settings_.config.text();
  QFile file(path);
  if (text && file.open(QIODevice::WriteOnly) && file.write(*text) == text->size() && file.flush())
    return true;
  qCWarning(lcIncome, "failed to write %s", qUtf8Printable(path));
  return false;
}

bool NginxSupervisor::waitUntilReady(qint64 deadlineMs) {
  while (!cancelled_ && sinceStart_.elapsed() < deadlineMs) {
    if (answersWithToken())
      return true;
    if (process_->waitForFinished(kPollMs) || process_->state() == QProcess::NotRunning)
      return false;
  }
  return false;
}

/// A port that answers may belong to another program; only our child knows the token. It opens all its ports
/// before it answers on any, so an answer on the page port covers the RTMP port.
bool NginxSupervisor::answersWithToken() const {
  const NginxConfig& config = settings_.config;
  QTcpSocket socket;
  socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(config.httpPort));
  if (!socket.waitForConnected(kAnswerLimitMs))
    return false;
  socket.write("GET /ready-" + config.readyToken + " HTTP/1.0\r\n\r\n");
  QByteArray reply;
  while (reply.size() < 4096 && socket.waitForReadyRead(kAnswerLimitMs)) {
    reply += socket.readAll();
    if (reply.endsWith("\r\n\r\n" + config.readyToken))
      return true;
  }
  return false;
}

void NginxSupervisor::logOutput() {
  const QList<QByteArray> lines = process_->readAllStandardError().split('\n');
  for (const QByteArray& line : lines) {
    if (!line.trimmed().isEmpty())
      qCInfo(lcIncome, "nginx says : %s", line.constData());
  }
}

void NginxSupervisor::endProcess() {
  if (!process_)
    return;
  disconnect(process_.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, nullptr);
  if (process_->state() != QProcess::NotRunning) {
    process_->terminate();
    if (!process_->waitForFinished(kStopLimitMs)) {
      process_->kill();
      process_->waitForFinished(kStopLimitMs);
    }
  }
  process_.reset();
}

void NginxSupervisor::stop() {
  restartTimer_.stop();
  running_ = false;
  rtmpPort_ = 0;
  endProcess();
  work_.reset();
  takeOffBoard();
}

void NginxSupervisor::onFinished() {
  running_ = false;
  publish();
  qCWarning(lcIncome, "income server ended unexpectedly");
  if (sinceStart_.elapsed() > kStableMs)
    restartsInARow_ = 0;
  scheduleRestart();
}

void NginxSupervisor::scheduleRestart() {
  if (restartsInARow_ < static_cast<int>(std::size(kRestartDelaysMs)))
    restartTimer_.start(kRestartDelaysMs[restartsInARow_]);
  else
    fail(QStringLiteral("income server does not stay up"));
}

void NginxSupervisor::restart() {
  process_.reset();
  if (cancelled_)
    return;
  ++restartsInARow_;
  ++restarts_;
  qCInfo(lcIncome, "restart income server, attempt %d", restartsInARow_);
  if (!launch() && !cancelled_)
    scheduleRestart();
}

void NginxSupervisor::publishFailure(const QString& reason) {
  StatusBoard::instance().publish(kBoardSection,
                                  {{QStringLiteral("running"), false}, {QStringLiteral("failure"), reason}});
}

void NginxSupervisor::takeOffBoard() {
  StatusBoard::instance().publish(kBoardSection, {});
}

void NginxSupervisor::publish() const {
  QJsonObject values{{QStringLiteral("running"), running_.load()},
                     {QStringLiteral("address"), settings_.config.addresses.constLast()},
                     {QStringLiteral("rtmpPort"), settings_.config.rtmpPort},
                     {QStringLiteral("httpPort"), settings_.config.httpPort},
                     {QStringLiteral("restarts"), restarts_}};
  if (running_)
    values.insert(QStringLiteral("processId"), process_->processId());
  StatusBoard::instance().publish(kBoardSection, values);
}

}  // namespace korvia
