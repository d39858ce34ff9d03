// The check of network ports, silent and as a table.
#include <unistd.h>

#include <QtTest>
#include <QtWidgets>

#include "GDialogHWCheckSwitch.h"
#include "LoopbackPort.h"

using korvia::LoopbackPort;

class HWCheckTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    socket_ = LoopbackPort::listenOn(0);
    busy_ = LoopbackPort::portOf(socket_);
    free_ = LoopbackPort::nextFree(busy_ + 1, 100);
    QVERIFY(busy_ > 0 && free_ > 0);
  }

  void cleanup() {
    if (socket_ >= 0)
      ::close(socket_);
    socket_ = -1;
  }

  void freePortsPass() {
    GDialogHWCheckSwitch dialog;
    QVERIFY(dialog.check({}));
    QVERIFY(dialog.check({{free_, true}, {free_, false}}));
    QVERIFY(!dialog.isVisible());
  }

  void busyRequiredPortFailsWithALine() {
    GDialogHWCheckSwitch dialog;
    const QByteArray line = "network port " + QByteArray::number(busy_) + " is in use (required)";
    QTest::ignoreMessage(QtWarningMsg, line.constData());
    QVERIFY(!dialog.check({{free_, true}, {busy_, true}}));
    QVERIFY(!dialog.isVisible());
  }

  void busyOptionalPortPassesWithALine() {
    GDialogHWCheckSwitch dialog;
    const QByteArray line = "network port " + QByteArray::number(busy_) + " is in use (optional)";
    QTest::ignoreMessage(QtWarningMsg, line.constData());
    QVERIFY(dialog.check({{busy_, false}}));
  }

  void impossiblePortsCountAsBusy() {
    GDialogHWCheckSwitch dialog;
    QVERIFY(!dialog.check({{0, true}}));
    QVERIFY(!dialog.check({{65536, true}}));
    QVERIFY(!dialog.check({{-1, true}}));
  }

  void tableShowsAndRefreshes() {
    GDialogHWCheckSwitch dialog;
    dialog.check({{free_, true}, {busy_, false}});
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* table = dialog.findChild<QTableWidget*>("_portTableWidget");
    QVERIFY(table);
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(row(table, 0), (QStringList{QString::number(free_), "Required", "Free"}));
    QCOMPARE(row(table, 1), (QStringList{QString::number(busy_), "Optional", "In use"}));
    ::close(socket_);
    socket_ = -1;
    QTest::mouseClick(dialog.findChild<QPushButton*>("_refreshPushButton"), Qt::LeftButton);
    QCOMPARE(row(table, 1), (QStringList{QString::number(busy_), "Optional", "Free"}));
    QTest::mouseClick(dialog.findChild<QPushButton*>("_okPushButton"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
  }

  void ownPortsAreNoHindrance() {
    GDialogHWCheckSwitch dialog;
    dialog.setOwnPorts({busy_});
    QVERIFY(dialog.check({{busy_, true}, {free_, true}}));
    auto* table = dialog.findChild<QTableWidget*>("_portTableWidget");
    QCOMPARE(row(table, 0).value(2), QString("This program"));
    QCOMPARE(row(table, 1).value(2), QString("Free"));
    QCOMPARE(dialog.findChild<QLabel*>("_resultLabel")->text(),
             QString("No other program uses these ports."));
    dialog.setOwnPorts({});
    QVERIFY(!dialog.check({{busy_, true}}));
    QCOMPARE(dialog.findChild<QLabel*>("_resultLabel")->text(), QString("In use by other programs: 1"));
  }

  void showingChecksAnew() {
    GDialogHWCheckSwitch dialog;
    dialog.check({{busy_, true}});
    ::close(socket_);
    socket_ = -1;
    dialog.show();
    QCOMPARE(row(dialog.findChild<QTableWidget*>("_portTableWidget"), 0).value(2), QString("Free"));
  }

 private:
  static QStringList row(const QTableWidget* table, int index) {
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column)
      texts.append(table->item(index, column)->text());
    return texts;
  }

  int socket_ = -1;
  int busy_ = 0;
  int free_ = 0;
};

QTEST_MAIN(HWCheckTest)
#include "tst_GDialogHWCheckSwitch.moc"
