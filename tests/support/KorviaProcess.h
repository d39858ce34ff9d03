// The program itself, with a home of its own in a temporary folder, a black box, and its log. Test thread.
#pragma once
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>

#include "support/BlackBoxReader.h"

namespace korvia::test {

class VirtualDisplay;

class KorviaProcess {
 public:
  explicit KorviaProcess(const VirtualDisplay& display);
  KorviaProcess(const KorviaProcess&) = delete;
  KorviaProcess& operator=(const KorviaProcess&) = delete;
  /// Kills the program when it still runs.
  ~KorviaProcess();

  /// A path in the temporary folder: "home", "d" for drive d:, "root" are the program's.
  QString in(const QString& name) const { return folder_.filePath(name); }
  void setEnvironment(const QString& name, const QString& value) { environment_.insert(name, value); }
  /// Another program file than the one of this build.
  void setProgram(const QString& fileName) { program_ = fileName; }

  bool start(const QStringList& options = {});
  /// Start, and the wait until the engine has answered. False when it does not within 20 s.
  bool startShow(const QStringList& options = {});
  qint64 processId() const { return process_.processId(); }
  bool isRunning() const { return process_.state() != QProcess::NotRunning; }
  void sendSignal(int number);
  bool waitForExit(int timeoutMs = 30000);

  /// Empty when the program ended by itself with exit code 0 and without a sanitizer's report; else what
  /// happened. Then it also prints the end of the program's log.
  QString trouble() const { return troubleUnless(0); }
  QString troubleUnless(int exitCode) const;

  BlackBoxReader& blackBox() { return *blackBox_; }
  /// Standard output and error so far.
  QString log() const;
  bool waitForLog(const QString& text, int timeoutMs = 15000) const;

  /// Port of the status page, from the log; 0 before it is there.
  int webPort() const;
  /// Address of the operator's page with its token, as the program prints it; empty before it is there.
  QString pageAddress() const;
  /// The sections of /status.json; empty when there is no answer.
  QJsonObject status() const;
  /// Frames that the engine has made, as the status page counts them; -1 when there is no answer.
  int frames() const;
  /// Process ids of the program's child processes of a name.
  QList<qint64> children(const QString& name) const;

  /// The first file in the folder or below whose name matches, waited for; empty when none comes.
  QString waitForFile(const QString& folder, const QString& wildcard, int timeoutMs = 15000) const;

 private:
  QTemporaryDir folder_;
  QString program_;
  QProcessEnvironment environment_;
  QProcess process_;
  std::unique_ptr<BlackBoxReader> blackBox_;
};

}  // namespace korvia::test
