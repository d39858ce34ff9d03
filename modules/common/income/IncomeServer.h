// Receives pushed RTMP streams and serves the page folder with an nginx that it starts and ends. Console
// thread only; the child process belongs to a supervisor on its own thread. KORVIA_NGINX and
// KORVIA_NGINX_MODULES are the program and the folder of its modules where they differ from Debian's;
// KORVIA_RTMP_PORT is the wanted RTMP port (1935). Other machines reach the servers when the program is told
// to listen for them (ListenPlace.h).
#pragma once
#include <QThread>
#include <memory>

#include "IKorviaRTMPIncomeServer.h"

namespace korvia {

class NginxSupervisor;

class IncomeServer : public IKorviaRTMPIncomeServer {
 public:
  IncomeServer();
  virtual ~IncomeServer();
  IncomeServer(const IncomeServer&) = delete;
  IncomeServer& operator=(const IncomeServer&) = delete;

  bool isValid() override { return true; }
  bool release() override;
  void* queryInterface(const Identifier* id, unsigned version) override;
  int open(const QString& rootPath, int port, const QString& htmlPath) override;
  bool isRunning() override;
  int rtmpPort() override;
  void close() override;
  QString publishSecret() override;

 private:
  int refuse(int result, const char* reason);

  QThread thread_;  // lives as long as the child, which the kernel ends together with it
  QString publishSecret_;
  std::unique_ptr<NginxSupervisor> supervisor_;  // on thread_
  bool refused_ = false;                         // the status board says why
};

}  // namespace korvia
