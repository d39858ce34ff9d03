#include "services/ConsoleServers.h"

#include "DrivePath.h"
#include "GDialogHWCheckSwitch.h"
#include "KorviaCommonUtil.h"
#include "StatusBoard.h"
#include "tagCheckNetPortItem.h"
#include "tagKorviaShowOutputParam.h"

namespace {

const QList<tagCheckNetPortItem> kNetPorts{{1935, true},  {8080, true},  {8800, true},
                                           {9000, true},  {19000, true}, {8000, false},
                                           {8001, false}, {8002, false}, {8003, false}};

}  // namespace

bool ConsoleServers::startWeb(IKorviaWebServerSink* sink, int* httpPort) {
  qDebug("create web server ...");
  if (!loadWeb() || !_web._interface->isValid())
    return false;
  qDebug("start web server ...");
  _httpPort = httpPort;
  if (_web._interface->open(sink, httpPort) < 0) {
    qDebug("failed to open web server");
    return false;
  }
  return true;
}

void ConsoleServers::serveSegments(const tagKorviaShowOutputItem& stream) {
  if (!_web._interface)
    return;
  const bool isOn = stream.hlsEnable != 0;
  _web._interface->serveSegments(stream.hlsPath,
                                 isOn ? korvia::DrivePath::resolve(stream.hlsTemporaryFolder) : QString());
}

bool ConsoleServers::prepareIncome() {
  qDebug("create rtmp server ...");
  return loadIncome() && _income._interface->isValid();
}

void ConsoleServers::startIncome(const QString& rootPath, int port) {
  if (!_income._interface || !_income._interface->isValid())
    return;
  const QString htmlPath = rootPath + QStringLiteral("html");
  KorviaCommonUtil::makesureExistDir(htmlPath, true);
  qDebug("start rtmp server ...");
  if (_income._interface->open(rootPath, port, htmlPath) < 0)
    qDebug("failed to open rtmp server");
}

int ConsoleServers::rtmpPort() const {
  return _income._interface ? _income._interface->rtmpPort() : 0;
}

QString ConsoleServers::publishSecret() const {
  return _income._interface ? _income._interface->publishSecret() : QString();
}

void* ConsoleServers::queryIncome(const Identifier* id, unsigned version) const {
  return _income._interface ? _income._interface->queryInterface(id, version) : nullptr;
}

void ConsoleServers::close() {
  qDebug("stop web server ...");
  if (_web._interface) {
    _web._interface->close();
    _web.releaseObject();
  }
  qDebug("stop rtmp server ...");
  if (_income._interface) {
    _income._interface->close();
    _income.releaseObject();
  }
}

void ConsoleServers::checkPorts(QWidget* parent) {
  GDialogHWCheckSwitch dialog(parent);
  dialog.check(kNetPorts);
}

void ConsoleServers::showPorts(QWidget* parent) const {
  GDialogHWCheckSwitch dialog(parent);
  dialog.setOwnPorts(ownPorts());
  dialog.check(kNetPorts);
  dialog.exec();
}

QList<int> ConsoleServers::ownPorts() const {
  QList<int> ports;
  if (_web._interface && _httpPort)
    ports.append(*_httpPort);
  const QJsonObject income =
      korvia::StatusBoard::instance().snapshot().value(QStringLiteral("incomeServer")).toObject();
  if (income.value(QStringLiteral("running")).toBool())
    ports << income.value(QStringLiteral("rtmpPort")).toInt()
          << income.value(QStringLiteral("httpPort")).toInt();
  return ports;
}
