// Runs nginx as a child process, restarts it when it dies, and ends it with this process. Lives on its own
// thread, on which all calls are made except isRunning, rtmpPort and cancel. That thread must live as long
// as the child, because the kernel ends the child with the thread that forked it.
#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <atomic>
#include <memory>

#include "NginxConfig.h"

namespace korvia {

class NginxSupervisor : public QObject {
 public:
  struct Settings {
    QString program;      // nginx
    QString cacheFolder;  // where the working folder is made
    NginxConfig config;   // ports are the wanted ones; working folder and token are filled in at the start
  };

  NginxSupervisor();
  ~NginxSupervisor() override;

  /// Starts the child and waits until it answers. A failure is logged and published.
  void start(const Settings& settings);
  /// Ends the child and removes its working folder.
  void stop();

  /// Any thread.
  bool isRunning() const { return running_; }
  /// Any thread. 0 while the server is not open.
  int rtmpPort() const { return rtmpPort_; }
  /// Any thread. A start that waits gives up soon, and no restart follows.
  void cancel() { cancelled_ = true; }

  /// Publishes the reason why there is no server, or nothing, in the section of the income server on the
  /// status board. Any thread.
  static void publishFailure(const QString& reason);
  static void takeOffBoard();

 private:
  bool makeWorkFolder();
  bool launch();
  bool launchOnce(qint64 deadlineMs, bool& endedEarly);
  bool writeConfig(const QString& path);
  bool waitUntilReady(qint64 deadlineMs);
  bool answersWithToken() const;
  void endProcess();
  void logOutput();
  void onFinished();
  void scheduleRestart();
  void restart();
  void publish() const;
  void fail(const QString& reason);

  Settings settings_;
  std::unique_ptr<QTemporaryDir> work_;
  std::unique_ptr<QProcess> process_;
  QElapsedTimer sinceStart_;  // of the call of launch, then of the child
  QTimer restartTimer_;
  int restartsInARow_ = 0;
  int restarts_ = 0;
  std::atomic<bool> running_{false};
  std::atomic<int> rtmpPort_{0};
  std::atomic<bool> cancelled_{false};
};

}  // namespace korvia
