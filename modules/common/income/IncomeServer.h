// Receives pushed RTMP streams and serves the page folder with an nginx that it starts and ends. Console
// thread only; the child process belongs to a supervisor on its own thread. KORVIA_NGINX and
// KORVIA_NGINX_MODULES are the program and the folder of its modules where they differ from Debian's;
// KORVIA_RTMP_PORT is the wanted RTMP port (1935); KORVIA_INCOME_LISTEN is a numeric IPv4 address to listen
// on instead of 127.0.0.1, for streams from other machines.
#pragma once
#include <QHostAddress>
#include <QThread>
#include <memory>

#include "IKorviaRTMPIncomeServer.h"

namespace korvia {

class NginxSupervisor;

/// The address to listen on, by the environment; the loopback for anything that is no address. Any thread.
QHostAddress incomeListenAddress();

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

 private:
  int refuse(int result, const char* reason);

  QThread thread_;  // lives as long as the child, which the kernel ends together with it
  std::unique_ptr<NginxSupervisor> supervisor_;  // on thread_
  bool refused_ = false;                         // the status board says why
};

}  // namespace korvia
