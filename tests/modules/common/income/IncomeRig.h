// An income server with a real nginx, as the console loads it, and publishers from outside.
#pragma once
#include <unistd.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "CKorviaRTMPIncomeServerHelper.h"
#include "LoopbackPort.h"
#include "PublishRules.h"
#include "StatusBoard.h"
#include "support/http_exchange.h"

namespace korvia::test {

/// What the status board has of the income server.
inline QJsonObject figures() {
  return StatusBoard::instance().snapshot()["incomeServer"].toObject();
}

/// Arguments of an ffmpeg that publishes for `seconds` at the pace of a camera.
inline QStringList publishing(const QString& url, int seconds = 8) {
  return {"-v",
          "error",
          "-re",
          "-f",
          "lavfi",
          "-i",
          "testsrc2=size=160x90:rate=25",
          "-t",
          QString::number(seconds),
          "-g",
          "5",
          "-f",
          "flv",
          url};
}

class IncomeRig {
 protected:
  /// Free ports, an empty root folder with a page, and the module loaded.
  bool setUp() {
    for (const char* name : {"KORVIA_NGINX", "KORVIA_NGINX_MODULES", "KORVIA_LISTEN", "KORVIA_PUBLISH_KEY"})
      qunsetenv(name);
    PublishRules::instance().setIncomePaths({});
    root_ = std::make_unique<QTemporaryDir>();
    html_ = root_->filePath("html");
    if (!root_->isValid() || !QDir().mkpath(html_))
      return false;
    write(html_ + "/index.html", "<p>korvia</p>");
    const int first = LoopbackPort::listenOn(0);
    const int second = LoopbackPort::listenOn(0);
    httpPort_ = LoopbackPort::portOf(first);
    qputenv("KORVIA_RTMP_PORT", QByteArray::number(LoopbackPort::portOf(second)));
    ::close(first);
    ::close(second);
    return helper_.create() && helper_._interface->isValid();
  }

  void tearDown() {
    if (helper_._interface)
      helper_._interface->close();
    helper_.releaseObject();
  }

  int openOnly() { return helper_._interface->open(root_->path() + "/", httpPort_, html_); }

  /// Opens and waits for the answer; a server that does not come up is closed again and a negative value.
  int open() {
    const int result = openOnly();
    if (result < 0)
      return result;
    (void)QTest::qWaitFor([&] { return helper_._interface->isRunning() || figures().contains("failure"); },
                          15000);
    if (helper_._interface->isRunning())
      return 0;
    helper_._interface->close();
    return -1;
  }

  /// rtmp://127.0.0.1:PORT/`stream`
  QString url(const QString& stream, const QString& host = "127.0.0.1") {
    return QString("rtmp://%1:%2/%3").arg(host).arg(helper_._interface->rtmpPort()).arg(stream);
  }

  static void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(content), content.size());
  }

  CKorviaRTMPIncomeServerHelper helper_;
  std::unique_ptr<QTemporaryDir> root_;
  QString html_;
  int httpPort_ = 0;
};

}  // namespace korvia::test
