#include "IncomeServer.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <cerrno>

#include "DrivePath.h"
#include "IncomePlace.h"
#include "ListenPlace.h"
#include "NginxSupervisor.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcIncome, "korvia.income", QtInfoMsg)

constexpr char kModuleFile[] = "ngx_rtmp_module.so";

QString absolute(const QString& path) {
  return QDir::cleanPath(QDir(DrivePath::resolve(path)).absolutePath());
}

QString findNginx() {
  if (qEnvironmentVariableIsSet("KORVIA_NGINX")) {
    const QFileInfo named(qEnvironmentVariable("KORVIA_NGINX"));
    return named.isFile() && named.isExecutable() ? named.absoluteFilePath() : QString();
  }
  const QString name = QStringLiteral("nginx");
  const QString found = QStandardPaths::findExecutable(name);
  // The folders of server programs are not in the search path of every user.
  return found.isEmpty() ? QStandardPaths::findExecutable(
                               name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")})
                         : found;
}

QString findRtmpModule() {
  const QString folder =
      qEnvironmentVariable("KORVIA_NGINX_MODULES", QStringLiteral("/usr/lib/nginx/modules"));
  const QFileInfo module{QDir(folder), QLatin1String(kModuleFile)};
  return module.isFile() ? module.absoluteFilePath() : QString();
}

/// 128 random bits as letters and digits.
QString randomSecret() {
  quint32 words[4];
  QRandomGenerator::system()->fillRange(words);
  return QString::fromLatin1(
      QByteArray::fromRawData(reinterpret_cast<const char*>(words), sizeof words).toHex());
}

}  // namespace

IncomeServer::IncomeServer() = default;

IncomeServer::~IncomeServer() {
  IncomeServer::close();
}

bool IncomeServer::release() {
  if (isValid())
    delete this;
  return true;
}

void* IncomeServer::queryInterface(const Identifier* id, unsigned version) {
  if (isRequestFor(kIKorviaRTMPIncomeServerId, id, version) || (id && *id == kIUnknownExId))
    return static_cast<IKorviaRTMPIncomeServer*>(this);
  return nullptr;
}

int IncomeServer::open(const QString& rootPath, int port, const QString& htmlPath) {
  if (supervisor_ || port < 1 || port > 65535 || htmlPath.isEmpty())
    return -EINVAL;
  close();  // takes an earlier refusal off the board
  NginxSupervisor::Settings settings;
  settings.program = findNginx();
  if (settings.program.isEmpty())
    return refuse(-ENOENT, "nginx is missing");
  settings.config.modulePath = findRtmpModule();
  if (settings.config.modulePath.isEmpty())
    return refuse(-ENOENT, "the rtmp module of nginx is missing");
  settings.cacheFolder = absolute(rootPath) + QStringLiteral("/cache");
  settings.config.htmlFolder = absolute(htmlPath);
  settings.config.addresses = listenAddresses();
  settings.config.httpPort = port;
  settings.config.rtmpPort = incomeRtmpPort();
  if (!NginxConfig::quoted(settings.config.htmlFolder) || !NginxConfig::quoted(settings.config.modulePath))
    return refuse(-EINVAL, "nginx cannot serve a folder of that name");

  publishSecret_ = randomSecret();
  settings.secrets = {publishSecret_.toLatin1(), qgetenv(kPublishKeyVariable)};
  supervisor_ = std::make_unique<NginxSupervisor>();
  supervisor_->moveToThread(&thread_);
  thread_.setObjectName(QStringLiteral("income server"));
  thread_.start();
  QMetaObject::invokeMethod(supervisor_.get(),
                            [supervisor = supervisor_.get(), settings] { supervisor->start(settings); });
  return 0;
}

int IncomeServer::refuse(int result, const char* reason) {
  qCWarning(lcIncome, "%s, streams cannot be pushed to the console", reason);
  NginxSupervisor::publishFailure(QString::fromLatin1(reason));
  refused_ = true;
  return result;
}

bool IncomeServer::isRunning() {
  return supervisor_ && supervisor_->isRunning();
}

int IncomeServer::rtmpPort() {
  return supervisor_ ? supervisor_->rtmpPort() : 0;
}

QString IncomeServer::publishSecret() {
  return publishSecret_;
}

void IncomeServer::close() {
  if (refused_)
    NginxSupervisor::takeOffBoard();
  refused_ = false;
  if (!supervisor_)
    return;
  supervisor_->cancel();
  QMetaObject::invokeMethod(
      supervisor_.get(), [this] { supervisor_->stop(); }, Qt::BlockingQueuedConnection);
  thread_.quit();
  thread_.wait();
  supervisor_.reset();
}

}  // namespace korvia

extern "C" Q_DECL_EXPORT void* CreateKorviaRTMPIncomeServer(const Identifier* id, unsigned version) {
  auto* server = new korvia::IncomeServer;
  void* interface = server->queryInterface(id, version);
  if (!interface)
    delete server;
  return interface;
}
