#include "KorviaProcess.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QtTest>
#include <csignal>

#include "support/VirtualDisplay.h"
#include "support/http_exchange.h"

namespace korvia::test {

namespace {

constexpr int kEngineMs = 20000;
constexpr int kLogTail = 6000;

/// "comm" and parent of a process; the name stands in brackets and may hold blanks.
QPair<QString, qint64> nameAndParent(const QString& processId) {
  QFile file(QStringLiteral("/proc/%1/stat").arg(processId));
  if (!file.open(QIODevice::ReadOnly))
    return {};
  const QByteArray text = file.readAll();
  const int begin = text.indexOf('(');
  const int end = text.lastIndexOf(')');
  return {QString::fromUtf8(text.mid(begin + 1, end - begin - 1)),
          text.mid(end + 2).split(' ').value(1).toLongLong()};
}

}  // namespace

KorviaProcess::KorviaProcess(const VirtualDisplay& display)
    : program_(QCoreApplication::applicationDirPath() + QStringLiteral("/korvia")),
      environment_(QProcessEnvironment::systemEnvironment()),
      blackBox_(std::make_unique<BlackBoxReader>(in(QStringLiteral("trace.jsonl")))) {
  for (const char* folder : {"home", "d", "run"})
    QDir(folder_.path()).mkpath(QLatin1String(folder));
  QFile::setPermissions(in(QStringLiteral("run")), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  for (const char* name : {"KORVIA_ENGINE", "KORVIA_TRACE", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                           "XDG_CACHE_HOME", "XDG_PICTURES_DIR", "WAYLAND_DISPLAY"})
    environment_.remove(QLatin1String(name));
  setEnvironment(QStringLiteral("HOME"), in(QStringLiteral("home")));
  setEnvironment(QStringLiteral("XDG_RUNTIME_DIR"), in(QStringLiteral("run")));
  setEnvironment(QStringLiteral("KORVIA_DRIVE_D"), in(QStringLiteral("d")));
  setEnvironment(QStringLiteral("DISPLAY"), display.name());
  setEnvironment(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
  // The software driver of OpenGL, which nothing here needs, unloads itself over memory that it keeps; the
  // leak check cannot name a library that is gone.
  setEnvironment(QStringLiteral("QT_XCB_GL_INTEGRATION"), QStringLiteral("none"));
  // One list of plugins for all homes: making it takes longer than a whole test.
  setEnvironment(QStringLiteral("GST_REGISTRY"),
                 QCoreApplication::applicationDirPath() + QStringLiteral("/../e2e-plugins.bin"));
}

KorviaProcess::~KorviaProcess() {
  if (!isRunning())
    return;
  process_.kill();
  process_.waitForFinished();
}

bool KorviaProcess::start(const QStringList& options) {
  process_.setProcessEnvironment(environment_);
  process_.setProcessChannelMode(QProcess::MergedChannels);
  process_.setStandardOutputFile(in(QStringLiteral("log.txt")));
  process_.start(program_, QStringList{QStringLiteral("--root"), in(QStringLiteral("root")),
                                       QStringLiteral("--trace"), in(QStringLiteral("trace.jsonl")),
                                       QStringLiteral("--size"), QStringLiteral("1280x720")} +
                               options);
  return process_.waitForStarted();
}

bool KorviaProcess::startShow(const QStringList& options) {
  return start(options) && blackBox_->waitFor(line(QStringLiteral("result"), QStringLiteral("ShowEventOpen")),
                                              0, kEngineMs) >= 0;
}

void KorviaProcess::sendSignal(int number) {
  if (isRunning())
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

bool KorviaProcess::waitForExit(int timeoutMs) {
  return !isRunning() || process_.waitForFinished(timeoutMs);
}

QString KorviaProcess::troubleUnless(int exitCode) const {
  QString what;
  const QString text = log();
  static const QRegularExpression report(
      QStringLiteral("AddressSanitizer|ERROR: LeakSanitizer|runtime error:|WARNING: ThreadSanitizer"));
  // The leak check stops all threads of the ended program, which fails now and then; then it has no verdict.
  const bool leaksAreUnknown = text.contains(QLatin1String("LeakSanitizer has encountered a fatal error"));
  const QRegularExpressionMatch found = report.match(text);
  if (isRunning())
    return QStringLiteral("still running");
  if (process_.exitStatus() != QProcess::NormalExit)
    what = QStringLiteral("killed by signal %1").arg(process_.exitCode());
  else if (found.hasMatch())
    what = QStringLiteral("sanitizer report");
  else if (process_.exitCode() != exitCode && !leaksAreUnknown)
    what = QStringLiteral("exit code %1").arg(process_.exitCode());
  else if (blackBox_->brokenLines() != 0)
    what = QStringLiteral("%1 broken lines in the black box").arg(blackBox_->brokenLines());
  if (what.isEmpty())
    return what;
  // QCOMPARE cuts long texts, so the log is printed here.
  qInfo("%s",
        qUtf8Printable(found.hasMatch() ? text.mid(found.capturedStart(), kLogTail) : text.right(kLogTail)));
  return what;
}

QString KorviaProcess::log() const {
  QFile file(in(QStringLiteral("log.txt")));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool KorviaProcess::waitForLog(const QString& text, int timeoutMs) const {
  return QTest::qWaitFor([&] { return log().contains(text); }, timeoutMs);
}

int KorviaProcess::webPort() const {
  static const QRegularExpression address(QStringLiteral("web server : http://127\\.0\\.0\\.1:(\\d+)/"));
  return address.match(log()).captured(1).toInt();
}

QString KorviaProcess::pageAddress() const {
  static const QRegularExpression address(QStringLiteral("operator's page : (\\S+#\\S+)"));
  return address.match(log()).captured(1);
}

QJsonObject KorviaProcess::status() const {
  const HttpReply reply = request(webPort(), "GET", "/status.json");
  if (reply.status != 200)
    return {};
  return QJsonDocument::fromJson(reply.body).object()[QStringLiteral("sections")].toObject();
}

int KorviaProcess::frames() const {
  return status()[QStringLiteral("engine")].toObject()[QStringLiteral("frames")].toInt(-1);
}

QList<qint64> KorviaProcess::children(const QString& name) const {
  QList<qint64> found;
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    const auto [childName, parent] = nameAndParent(entry);
    if (parent == processId() && parent != 0 && childName == name)
      found << entry.toLongLong();
  }
  return found;
}

QString KorviaProcess::waitForFile(const QString& folder, const QString& wildcard, int timeoutMs) const {
  QString found;
  const bool isThere = QTest::qWaitFor(
      [&] {
        QDirIterator files(folder, {wildcard}, QDir::Files, QDirIterator::Subdirectories);
        if (files.hasNext())
          found = files.next();
        return !found.isEmpty();
      },
      timeoutMs);
  return isThere ? found : QString();
}

}  // namespace korvia::test
