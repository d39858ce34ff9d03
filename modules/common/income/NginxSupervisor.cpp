#include "NginxSupervisor.h"

#include <linux/close_range.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <algorithm>
#include <cerrno>
#include <chrono>

#include "IncomePlace.h"
#include "KorviaCommonUtil.h"
#include "LoopbackPort.h"
#include "StatusBoard.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcIncome, "korvia.income", QtInfoMsg)

constexpr int kPortTries = 20;
constexpr int kLaunchTries = 3;
constexpr qint64 kReadyLimitMs = 5000;
constexpr int kPollMs = 20;
constexpr std::chrono::milliseconds kAnswerLimit{500};
constexpr int kStopLimitMs = 2000;
constexpr int kRestartDelayMs = 50;
// A server that dies again and again as soon as it is up would take a core for itself.
constexpr qint64 kShortLifeMs = 2000;
constexpr int kShortLivesMax = 5;
constexpr int kRetryDelaysMs[] = {1000, 4000, 10000, 30000};
constexpr int kLookIntervalMs = 1000;
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
    raiseDescriptorLimit();
    // Signals of a terminal are for the console, which ends the child in order.
    setpgid(0, 0);
  }

 private:
  static void raiseDescriptorLimit() {
    constexpr rlim_t kWanted = 2 * NginxConfig::kConnections;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWanted)
      return;
    limit.rlim_cur = std::min(limit.rlim_max, kWanted);
    setrlimit(RLIMIT_NOFILE, &limit);
  }

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

NginxSupervisor::NginxSupervisor() : attemptTimer_(this), lookTimer_(this) {
  attemptTimer_.setSingleShot(true);
  connect(&attemptTimer_, &QTimer::timeout, this, &NginxSupervisor::attempt);
  connect(&lookTimer_, &QTimer::timeout, this, &NginxSupervisor::look);
}

NginxSupervisor::~NginxSupervisor() {
  stop();
}

void NginxSupervisor::start(const Settings& settings) {
  settings_ = settings;
  attempt();
}

void NginxSupervisor::attempt() {
  process_.reset();
  if (cancelled_)
    return;
  if (wasUp_)
    qCInfo(lcIncome, "restart income server, number %d", ++restarts_);
  if (prepare() && launch()) {
    failuresInARow_ = 0;
    return;
  }
  if (cancelled_)
    return;
  // Nothing of a server that never came up is left in the folder of the operator while it waits.
  if (!wasUp_)
    tearDown();
  const int last = static_cast<int>(std::size(kRetryDelaysMs)) - 1;
  attemptTimer_.start(kRetryDelaysMs[std::min(failuresInARow_++, last)]);
  fail(failure_.isEmpty() ? QStringLiteral("income server does not come up") : failure_);
}

/// The folder, the gate and the control, which last for all restarts.
bool NginxSupervisor::prepare() {
  if (gate_)
    return true;
  failure_.clear();
  if (!makeWorkFolder()) {
    failure_ = QStringLiteral("income server has no folder to work in : %1").arg(settings_.cacheFolder);
    return false;
  }
  settings_.config.workFolder = work_->path();
  control_ = std::make_unique<NginxControl>(work_->path());
  gate_ = std::make_unique<PublishGate>(work_->path(), settings_.secrets);
  return gate_->start();
}

void NginxSupervisor::fail(const QString& reason) {
  // One line for all attempts in a row, the board tells the rest.
  if (failuresInARow_ <= 1)
    qCWarning(lcIncome, "%s", qUtf8Printable(reason));
  failure_ = reason;
  if (wasUp_)
    publish(State::Down);
  else
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
    if (launchOnce(endedEarly)) {
      sinceStart_.start();
      rtmpPort_ = settings_.config.rtmpPort;
      wasUp_ = true;
      failure_.clear();
      publishers_ = PublisherTable();
      lookTimer_.start(kLookIntervalMs);
      publish(State::Up);
      qCInfo(lcIncome, "streams are pushed to : rtmp://%s:%d/income/NAME",
             qUtf8Printable(KorviaCommonUtil::getIp()), settings_.config.rtmpPort);
      running_ = true;  // last, so that who sees it finds the figures on the board
      return true;
    }
    if (!endedEarly)
      break;
  }
  return false;
}

bool NginxSupervisor::launchOnce(bool& endedEarly) {
  const QString configPath = work_->filePath(QStringLiteral("nginx.conf"));
  // Publishers know the ports of a server that was up, so a restart never changes them.
  if ((!wasUp_ && !choosePorts()) || !writeConfig(configPath) || !startProcess(configPath))
    return false;
  if (waitUntilReady()) {
    connect(process_.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &NginxSupervisor::onFinished);
    return true;
  }
  endedEarly = process_->state() == QProcess::NotRunning;
  endProcess();
  return false;
}

bool NginxSupervisor::choosePorts() {
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
    failure_ = QStringLiteral("no free port for the income server");
    return false;
  }
  if (config.httpPort != wantedHttp)
    qCWarning(lcIncome, "port %d is in use, pages take %d", wantedHttp, config.httpPort);
  if (config.rtmpPort != wantedRtmp)
    qCWarning(lcIncome, "port %d is in use, rtmp takes %d", wantedRtmp, config.rtmpPort);
  return true;
}

bool NginxSupervisor::startProcess(const QString& configPath) {
  // A killed nginx leaves its socket file, which a new one would take for a socket in use.
  QFile::remove(work_->filePath(QLatin1String(NginxConfig::kControlSocket)));
  process_ = std::make_unique<BoundProcess>();
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove(QStringLiteral("NGINX"));  // would name sockets to inherit
  environment.remove(QLatin1String(kPublishKeyVariable));
  process_->setProcessEnvironment(environment);
  process_->setStandardInputFile(QProcess::nullDevice());
  process_->setStandardOutputFile(QProcess::nullDevice());
  process_->setWorkingDirectory(work_->path());
  connect(process_.get(), &QProcess::readyReadStandardError, this, &NginxSupervisor::logOutput);
  process_->start(settings_.program, {QStringLiteral("-e"), QStringLiteral("stderr"), QStringLiteral("-p"),
                                      work_->path() + QLatin1Char('/'), QStringLiteral("-c"), configPath});
  if (process_->waitForStarted(static_cast<int>(kReadyLimitMs)))
    return true;
  qCWarning(lcIncome, "failed to start %s : %s", qUtf8Printable(settings_.program),
            qUtf8Printable(process_->errorString()));
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

/// nginx opens all its ports before it answers on its control socket.
bool NginxSupervisor::waitUntilReady() {
  while (!cancelled_ && sinceStart_.elapsed() < kReadyLimitMs) {
    if (control_->isReady(kAnswerLimit))
      return true;
    if (process_->waitForFinished(kPollMs) || process_->state() == QProcess::NotRunning)
      return false;
  }
  return false;
}

void NginxSupervisor::logOutput() {
  QByteArray output = process_->readAllStandardError();
  for (const QByteArray& secret : {settings_.secrets.liveSecret, settings_.secrets.publishKey}) {
    if (!secret.isEmpty())
      output.replace(secret, "***");
  }
  const QList<QByteArray> lines = output.split('\n');
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
  attemptTimer_.stop();
  running_ = false;
  rtmpPort_ = 0;
  tearDown();
  takeOffBoard();
}

void NginxSupervisor::tearDown() {
  lookTimer_.stop();
  endProcess();
  gate_.reset();
  control_.reset();
  work_.reset();
}

void NginxSupervisor::onFinished() {
  running_ = false;
  lookTimer_.stop();
  publishers_ = PublisherTable();
  publish(State::Down);
  shortLivesInARow_ = sinceStart_.elapsed() < kShortLifeMs ? shortLivesInARow_ + 1 : 0;
  qCWarning(lcIncome, "income server ended unexpectedly");
  attemptTimer_.start(shortLivesInARow_ > kShortLivesMax ? kRetryDelaysMs[0] : kRestartDelayMs);
}

void NginxSupervisor::look() {
  if (const auto publishers = control_->publishers(kAnswerLimit))
    publishers_.update(*publishers);
  publish(State::Up);
}

void NginxSupervisor::publishFailure(const QString& reason) {
  StatusBoard::instance().publish(kBoardSection,
                                  {{QStringLiteral("running"), false}, {QStringLiteral("failure"), reason}});
}

void NginxSupervisor::takeOffBoard() {
  StatusBoard::instance().publish(kBoardSection, {});
}

void NginxSupervisor::publish(State state) const {
  QJsonObject values{{QStringLiteral("running"), state == State::Up},
                     {QStringLiteral("address"), settings_.config.addresses.constLast()},
                     {QStringLiteral("rtmpPort"), settings_.config.rtmpPort},
                     {QStringLiteral("httpPort"), settings_.config.httpPort},
                     {QStringLiteral("restarts"), restarts_},
                     {QStringLiteral("refused"), gate_ ? gate_->refused() : 0},
                     {QStringLiteral("publishers"), publishers_.rows()}};
  if (!failure_.isEmpty())
    values.insert(QStringLiteral("failure"), failure_);
  if (state == State::Up)
    values.insert(QStringLiteral("processId"), process_->processId());
  StatusBoard::instance().publish(kBoardSection, values);
}

}  // namespace korvia
