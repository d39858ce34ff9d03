// The check of the network ports at the start of the console.
#include <QTcpServer>
#include <QtTest>

#include "ConsoleDesk.h"

namespace {

QStringList& warnings() {
  static QStringList lines;
  return lines;
}

void keepWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type == QtWarningMsg)
    warnings().append(text);
}

}  // namespace

class ConsoleServersTest : public QObject {
  Q_OBJECT

 private slots:
  void startLogsTakenPortsAndGoesOn() {
    QTcpServer required;
    QTcpServer optional;
    // Where another program holds the port it is taken all the same.
    required.listen(QHostAddress::LocalHost, 9000);
    optional.listen(QHostAddress::LocalHost, 8003);
    ConsoleDesk desk;
    warnings().clear();
    const QtMessageHandler before = qInstallMessageHandler(keepWarning);
    const bool created = desk.create();
    qInstallMessageHandler(before);
    QVERIFY(created);
    QVERIFY2(warnings().contains("network port 9000 is in use (required)"),
             qPrintable(warnings().join('\n')));
    QVERIFY2(warnings().contains("network port 8003 is in use (optional)"),
             qPrintable(warnings().join('\n')));
    QCOMPARE(desk.console->serverLog, (QStringList{"web load", "web open", "income load"}));
  }
};

QTEST_MAIN(ConsoleServersTest)
#include "tst_console_servers.moc"
