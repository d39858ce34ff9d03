// The income server with a real nginx, as the console loads it.
#include <signal.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QNetworkInterface>
#include <QProcess>
#include <QTcpServer>
#include <QtTest>

#include "IncomeRig.h"

using korvia::LoopbackPort;
using korvia::test::figures;
using korvia::test::IncomeRig;
using korvia::test::request;

namespace {

bool accepts(const QString& address, int port) {
  QTcpSocket socket;
  socket.connectToHost(address, static_cast<quint16>(port));
  return socket.waitForConnected(2000);
}

/// False also for a process that has ended and waits for somebody to read its result.
bool isAlive(qint64 pid) {
  QFile stat(QString("/proc/%1/stat").arg(pid));
  if (!stat.open(QIODevice::ReadOnly))
    return false;
  const QByteArray line = stat.readAll();
  const char state = line.mid(line.lastIndexOf(')') + 2).at(0);
  return state != 'Z' && state != 'X';
}

/// What a client of RTMP does first: version 3 and 1536 bytes, answered by the same amount and an echo.
QByteArray rtmpHandshake(int port) {
  QTcpSocket socket;
  socket.connectToHost("127.0.0.1", static_cast<quint16>(port));
  if (!socket.waitForConnected(2000))
    return {};
  socket.write(QByteArray(1, '\x03') + QByteArray(8, '\0') + QByteArray(1528, 'r'));
  QByteArray reply;
  while (reply.size() < 1 + 2 * 1536 && socket.waitForReadyRead(2000))
    reply += socket.readAll();
  return reply;
}

}  // namespace

class IncomeServerTest : public QObject, private IncomeRig {
  Q_OBJECT

 private slots:
  void init() { QVERIFY(setUp()); }
  void cleanup() { tearDown(); }

  void takesRtmpAndServesPages() {
    QVERIFY(!helper_._interface->isRunning());
    QCOMPARE(helper_._interface->rtmpPort(), 0);
    QCOMPARE(open(), 0);
    QVERIFY(helper_._interface->isRunning());
    QCOMPARE(helper_._interface->rtmpPort(), figures()["rtmpPort"].toInt());
    const QByteArray reply = rtmpHandshake(helper_._interface->rtmpPort());
    QCOMPARE(reply.size(), 1 + 2 * 1536);
    QCOMPARE(reply.at(0), '\x03');

    const int port = figures()["httpPort"].toInt();
    QCOMPARE(request(port, "GET", "/").body, QByteArray("<p>korvia</p>"));
    QCOMPARE(request(port, "GET", "/missing").status, 404);
    QCOMPARE(request(port, "GET", "/../nginx.conf").status, 400);
    QCOMPARE(request(port, "POST", "/").status, 403);
    QVERIFY(QDir(root_->filePath("cache")).entryList({"income-*"}).size() == 1);
  }

  void listensOnLoopbackAlone() {
    QCOMPARE(open(), 0);
    for (const int port : {figures()["httpPort"].toInt(), figures()["rtmpPort"].toInt()}) {
      QTcpServer other;
      QVERIFY(other.listen(QHostAddress("127.0.0.2"), static_cast<quint16>(port)));
    }
  }

  void listensWhereItIsTold() {
    qputenv("KORVIA_LISTEN", "127.0.0.2");
    QCOMPARE(open(), 0);
    for (const int port : {figures()["httpPort"].toInt(), helper_._interface->rtmpPort()}) {
      QVERIFY(accepts("127.0.0.2", port));
      QVERIFY(accepts("127.0.0.1", port));
      QVERIFY(!accepts("127.0.0.3", port));
    }
  }

  void portThatIsBusyOnOneAddressGivesWay() {
    qputenv("KORVIA_LISTEN", "127.0.0.2");
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress("127.0.0.2"), static_cast<quint16>(httpPort_)));
    QCOMPARE(open(), 0);
    QVERIFY(figures()["httpPort"].toInt() > httpPort_);
  }

  void closeEndsTheProcess() {
    QCOMPARE(open(), 0);
    const qint64 pid = figures()["processId"].toInt();
    const int rtmpPort = helper_._interface->rtmpPort();
    QVERIFY(isAlive(pid));
    helper_._interface->close();
    QVERIFY(!isAlive(pid));
    QVERIFY(LoopbackPort::isFree(rtmpPort));
    QVERIFY(!helper_._interface->isRunning());
    QCOMPARE(helper_._interface->rtmpPort(), 0);
    QCOMPARE(figures(), QJsonObject());
    QCOMPARE(QDir(root_->filePath("cache")).entryList({"income-*"}), QStringList());
    helper_._interface->close();
    QCOMPARE(open(), 0);
    QVERIFY(helper_._interface->isRunning());
  }

  void releaseEndsTheProcessToo() {
    QCOMPARE(open(), 0);
    const qint64 pid = figures()["processId"].toInt();
    helper_.releaseObject();
    QVERIFY(!isAlive(pid));
  }

  void busyPortsGiveWay() {
    const int busyHttp = LoopbackPort::listenOn(0);
    const int busyRtmp = LoopbackPort::listenOn(0);
    httpPort_ = LoopbackPort::portOf(busyHttp);
    const int rtmpPort = LoopbackPort::portOf(busyRtmp);
    qputenv("KORVIA_RTMP_PORT", QByteArray::number(rtmpPort));
    QCOMPARE(open(), 0);
    QVERIFY(helper_._interface->rtmpPort() > rtmpPort && helper_._interface->rtmpPort() < rtmpPort + 40);
    QVERIFY(figures()["httpPort"].toInt() > httpPort_);
    QCOMPARE(request(figures()["httpPort"].toInt(), "GET", "/").status, 200);
    ::close(busyHttp);
    ::close(busyRtmp);
  }

  void sameWishForBothPorts() {
    qputenv("KORVIA_RTMP_PORT", QByteArray::number(httpPort_));
    QCOMPARE(open(), 0);
    QVERIFY(figures()["httpPort"].toInt() != figures()["rtmpPort"].toInt());
    QCOMPARE(request(figures()["httpPort"].toInt(), "GET", "/").status, 200);
  }

  void oddFolderNames_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks and marks") << "it's \"a\" {b}; #c %HTML%";
    QTest::newRow("back-slash") << "a\\b";
    QTest::newRow("other script") << QString::fromUtf8("网页 été");
  }

  void oddFolderNames() {
    QFETCH(QString, name);
    html_ = root_->filePath(name);
    QVERIFY(QDir().mkdir(html_));
    write(html_ + "/index.html", "odd");
    QCOMPARE(open(), 0);
    QCOMPARE(request(figures()["httpPort"].toInt(), "GET", "/").body, QByteArray("odd"));
  }

  void unsafeFolderNameIsRefused() {
    html_ = root_->filePath("$uri");
    QVERIFY(open() < 0);
    QVERIFY(!helper_._interface->isRunning());
  }

  void missingProgramOrModule() {
    qputenv("KORVIA_NGINX", "/no/such/nginx");
    QVERIFY(open() < 0);
    qputenv("KORVIA_NGINX", "/etc/passwd");
    QVERIFY(open() < 0);
    qunsetenv("KORVIA_NGINX");
    qputenv("KORVIA_NGINX_MODULES", QFile::encodeName(root_->path()));
    QVERIFY(open() < 0);
    QVERIFY(!helper_._interface->isRunning());
    qunsetenv("KORVIA_NGINX_MODULES");
    QCOMPARE(open(), 0);
  }

  void programThatEndsOrHangs() {
    const QString fake = root_->filePath("nginx");
    qputenv("KORVIA_NGINX", QFile::encodeName(fake));
    write(fake, "#!/bin/sh\necho broken >&2\nexit 1\n");
    QVERIFY(QFile::setPermissions(fake, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(open() < 0);
    QVERIFY(timer.elapsed() < 5000);
    write(fake, "#!/bin/sh\nexec sleep 600\n");
    timer.start();
    QVERIFY(open() < 0);
    QVERIFY(timer.elapsed() < 9000);
  }

  void openAndCloseDoNotWaitForAHangingProgram() {
    const QString fake = root_->filePath("nginx");
    qputenv("KORVIA_NGINX", QFile::encodeName(fake));
    write(fake, "#!/bin/sh\nexec sleep 600\n");
    QVERIFY(QFile::setPermissions(fake, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(openOnly(), 0);
    QVERIFY2(timer.elapsed() < 500, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!helper_._interface->isRunning());
    QCOMPARE(helper_._interface->rtmpPort(), 0);
    timer.start();
    helper_._interface->close();
    QVERIFY2(timer.elapsed() < 2500, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(figures(), QJsonObject());
  }

  void brokenModuleIsToldOnTheBoard() {
    write(root_->filePath("ngx_rtmp_module.so"), "no library");
    qputenv("KORVIA_NGINX_MODULES", QFile::encodeName(root_->path()));
    QCOMPARE(openOnly(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(figures()["failure"].toString(),
                              QStringLiteral("income server does not come up"), 15000);
    QCOMPARE(figures()["running"].toBool(true), false);
    QCOMPARE(QDir(root_->filePath("cache")).entryList({"income-*"}), QStringList());
    helper_._interface->close();
    QCOMPARE(figures(), QJsonObject());
  }

  void missingProgramIsToldOnTheBoard() {
    qputenv("KORVIA_NGINX", "/no/such/nginx");
    QVERIFY(openOnly() < 0);
    QCOMPARE(figures()["failure"].toString(), QStringLiteral("nginx is missing"));
    helper_._interface->close();
    QCOMPARE(figures(), QJsonObject());
  }

  void ctrlCOfTheTerminalIsNotForTheServer() {
    QCOMPARE(open(), 0);
    QVERIFY(::getpgid(static_cast<pid_t>(figures()["processId"].toInt())) != ::getpgrp());
  }

  void badArguments() {
    QVERIFY(helper_._interface->open(root_->path(), 0, html_) < 0);
    QVERIFY(helper_._interface->open(root_->path(), 65536, html_) < 0);
    QVERIFY(helper_._interface->open(root_->path(), httpPort_, QString()) < 0);
    QCOMPARE(open(), 0);
    QVERIFY(open() < 0);
    QVERIFY(helper_._interface->isRunning());
  }

  void deadChildComesBack() {
    QCOMPARE(open(), 0);
    const qint64 pid = figures()["processId"].toInt();
    const int rtmpPort = helper_._interface->rtmpPort();
    QCOMPARE(::kill(static_cast<pid_t>(pid), SIGKILL), 0);
    QTRY_VERIFY_WITH_TIMEOUT(figures()["restarts"].toInt() == 1 && helper_._interface->isRunning(), 10000);
    QVERIFY(figures()["processId"].toInt() != pid);
    QCOMPARE(helper_._interface->rtmpPort(), rtmpPort);
    QVERIFY(accepts("127.0.0.1", rtmpPort));
  }

  void dyingChildIsBackWithinASecondEachTime() {
    QCOMPARE(open(), 0);
    const int rtmpPort = helper_._interface->rtmpPort();
    const int httpPort = figures()["httpPort"].toInt();
    for (int death = 1; death <= 3; ++death) {
      QElapsedTimer timer;
      timer.start();
      QCOMPARE(::kill(static_cast<pid_t>(figures()["processId"].toInt()), SIGKILL), 0);
      QTRY_VERIFY_WITH_TIMEOUT(figures()["restarts"].toInt() == death && helper_._interface->isRunning(),
                               10000);
      QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
      QCOMPARE(helper_._interface->rtmpPort(), rtmpPort);
      QCOMPARE(figures()["httpPort"].toInt(), httpPort);
      QVERIFY(accepts("127.0.0.1", rtmpPort));
    }
  }

  void serverThatDidNotComeUpIsTriedAgain() {
    write(root_->filePath("ngx_rtmp_module.so"), "no library");
    qputenv("KORVIA_NGINX_MODULES", QFile::encodeName(root_->path()));
    QCOMPARE(openOnly(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(figures().contains("failure"), 15000);
    QVERIFY(QFile::remove(root_->filePath("ngx_rtmp_module.so")));
    QVERIFY(QFile::link("/usr/lib/nginx/modules/ngx_rtmp_module.so", root_->filePath("ngx_rtmp_module.so")));
    QTRY_VERIFY_WITH_TIMEOUT(helper_._interface->isRunning(), 15000);
    QVERIFY(!figures().contains("failure"));
  }

  void workFolderMayHaveALongPath() {
    const QString deep = root_->filePath(QString(60, 'a') + "/" + QString(60, 'b'));
    QVERIFY(QDir().mkpath(deep));
    QCOMPARE(helper_._interface->open(deep + "/", httpPort_, html_), 0);
    QTRY_VERIFY_WITH_TIMEOUT(helper_._interface->isRunning(), 15000);
    QVERIFY(QDir(deep + "/cache").entryList({"income-*"}).size() == 1);
  }

  void closeWhileARestartIsDue() {
    QCOMPARE(open(), 0);
    const qint64 pid = figures()["processId"].toInt();
    QCOMPARE(::kill(static_cast<pid_t>(pid), SIGKILL), 0);
    QTRY_VERIFY(!helper_._interface->isRunning());
    helper_._interface->close();
    QCOMPARE(figures(), QJsonObject());
  }

  void diesWithAKilledConsole() {
    QProcess host;
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    host.start(QCoreApplication::applicationDirPath() + "/income_host",
               {root_->path(), QString::number(httpPort_), html_});
    QVERIFY(host.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(host.canReadLine() || host.state() == QProcess::NotRunning, 20000);
    const QJsonObject hosted = QJsonDocument::fromJson(host.readLine()).object();
    const qint64 pid = hosted["processId"].toInt();
    const int rtmpPort = hosted["rtmpPort"].toInt();
    QVERIFY(pid > 0 && isAlive(pid));
    QVERIFY(accepts("127.0.0.1", rtmpPort));
    host.kill();
    QVERIFY(host.waitForFinished());
    QTRY_VERIFY(!isAlive(pid));
    QTRY_VERIFY(LoopbackPort::isFree(rtmpPort));

    // What the killed one left behind goes at the next start.
    const QStringList leftOver = QDir(root_->filePath("cache")).entryList({"income-*"});
    QCOMPARE(leftOver.size(), 1);
    QCOMPARE(open(), 0);
    const QStringList now = QDir(root_->filePath("cache")).entryList({"income-*"});
    QCOMPARE(now.size(), 1);
    QVERIFY(now != leftOver);
  }
};

QTEST_GUILESS_MAIN(IncomeServerTest)
#include "tst_IncomeServer.moc"
