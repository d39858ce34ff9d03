// The web server and the income server, which run beside the console: loads, starts and ends them, and checks
// the network ports that they need. Console thread.
#pragma once
#include <QList>
#include <QString>

#include "CKorviaRTMPIncomeServerHelper.h"
#include "CKorviaWebServerHelper.h"

class IKorviaWebServerSink;
struct tagKorviaShowOutputItem;
class QWidget;

class ConsoleServers {
 public:
  virtual ~ConsoleServers() = default;

  /// Loads the web server and opens it. `httpPort` is the first port to try and becomes the port that the
  /// server took. Neither pointer is owned, and both must outlive the server. False when the module is
  /// missing or no port is free.
  bool startWeb(IKorviaWebServerSink* sink, int* httpPort);
  /// Serves the playlist and the segments of the stream as these settings tell; nothing when HLS is off.
  void serveSegments(const tagKorviaShowOutputItem& stream);
  /// Loads the income server, which startIncome opens later. False when the module is missing.
  bool prepareIncome();
  /// Opens the income server with the folder "html" below `rootPath`, which ends in a separator. A failure is
  /// logged and changes nothing else. Without a prepared server nothing happens.
  void startIncome(const QString& rootPath, int port);
  /// The RTMP port of the income server; 0 while it does not run.
  int rtmpPort() const;
  /// What the income server asks of the program when that publishes; empty while it does not run.
  QString publishSecret() const;
  /// Asks the income server for an interface; null while it is not loaded.
  void* queryIncome(const Identifier* id, unsigned version) const;
  /// Ends and releases both servers. Harmless when they are not there.
  void close();

  /// Logs which of the program's ports are taken by others. Shows nothing.
  static void checkPorts(QWidget* parent);
  /// Shows the state of the program's ports in a modal dialog.
  void showPorts(QWidget* parent) const;

 protected:
  /// Make the object behind the helper; false when the module is missing. Tests put their own servers there.
  virtual bool loadWeb() { return _web.create(); }
  virtual bool loadIncome() { return _income.create(); }

  CKorviaWebServerHelper _web;
  CKorviaRTMPIncomeServerHelper _income;

 private:
  /// Ports that these servers listen on themselves.
  QList<int> ownPorts() const;

  const int* _httpPort = nullptr;
};
