// Runs nginx as a child process, restarts it when it dies, and ends it with this process. Beside it stands
// the gate that nginx asks before each publisher. Lives on its own thread, on which all calls are made except
// isRunning, rtmpPort and cancel. That thread must live as long as the child, because the kernel ends the
// child with the thread that forked it.
#pragma once
#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <atomic>
#include <memory>

#include "NginxConfig.h"
#include "NginxControl.h"
#include "PublishGate.h"
#include "PublisherTable.h"

namespace korvia {

class NginxSupervisor : public QObject {
 public:
  struct Settings {
    QString program;      // nginx
    QString cacheFolder;  // where the working folder is made
    NginxConfig config;   // ports are the wanted ones; the working folder is filled in at the start
    PublishGate::Secrets secrets;
  };

  NginxSupervisor();
  ~NginxSupervisor() override;

  /// Starts the child and waits until it answers. A failure is logged and published, and the start is tried
  /// again after longer and longer waits, every 30 s at last.
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
  enum class State { Up, Down };

  void attempt();
  bool prepare();
  void tearDown();
  bool makeWorkFolder();
  bool launch();
  bool launchOnce(bool& endedEarly);
  bool choosePorts();
  bool startProcess(const QString& configPath);
  bool writeConfig(const QString& path);
  bool waitUntilReady();
  void endProcess();
  void logOutput();
  void onFinished();
  void look();
  void publish(State state) const;
  void fail(const QString& reason);

  Settings settings_;
  std::unique_ptr<QTemporaryDir> work_;
  std::unique_ptr<PublishGate> gate_;
  std::unique_ptr<NginxControl> control_;
  std::unique_ptr<QProcess> process_;
  QElapsedTimer sinceStart_;  // of the call of launch, then of the child
  QTimer attemptTimer_;
  QTimer lookTimer_;
  PublisherTable publishers_;
  QString failure_;         // why there is no server; empty while there is one
  bool wasUp_ = false;      // its ports stay the same from then on
  int failuresInARow_ = 0;  // attempts that did not come up
  int shortLivesInARow_ = 0;
  int restarts_ = 0;
  std::atomic<bool> running_{false};
  std::atomic<int> rtmpPort_{0};
  std::atomic<bool> cancelled_{false};
};

}  // namespace korvia
