// Datagrams to an address, through an interface, and settings that do not fit.
#include <QUdpSocket>

#include "StreamRig.h"
#include "engine/output/stream/UdpTarget.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

class UdpTargetTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;

  static UdpSettings settingsFor(int port) {
    UdpSettings settings;
    settings.address = QStringLiteral("127.0.0.1");
    settings.port = port;
    settings.retry.firstMs = 200;
    settings.retry.longestMs = 200;
    return settings;
  }

 private slots:
  void aReceiverGetsTransportStream_data() {
    QTest::addColumn<QString>("interface");
    QTest::newRow("any interface") << "";
    QTest::newRow("by name") << "lo";
    QTest::newRow("by address") << "127.0.0.1";
  }
  void aReceiverGetsTransportStream() {
    QFETCH(QString, interface);
    QUdpSocket receiver;
    QVERIFY(receiver.bind(QHostAddress::LocalHost));
    receiver.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 4 << 20);
    UdpSettings settings = settingsFor(receiver.localPort());
    settings.bindInterface = interface;
    settings.ttl = 7;
    QFile file(folder_.filePath("udp.ts"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    int oddSizes = 0;
    {
      LiveSlot live({std::make_shared<UdpTarget>(settings)});
      QVERIFY(live.waitFor(KorviaShowTargetState::Up));
      QCOMPARE(live.report().name, QString("UDP"));
      const QDeadlineTimer second(1500);
      while (!second.hasExpired() && receiver.waitForReadyRead(1000)) {
        while (receiver.hasPendingDatagrams()) {
          QByteArray datagram(static_cast<int>(receiver.pendingDatagramSize()), 0);
          receiver.readDatagram(datagram.data(), datagram.size());
          oddSizes += datagram.size() % 188 != 0 || datagram.size() > 7 * 188 ? 1 : 0;
          file.write(datagram);
        }
      }
    }
    file.close();
    QCOMPARE(oddSizes, 0);
    const VideoVerdict verdict = VideoJudge::judge(file.fileName());
    QVERIFY(verdict.frames >= 25);
    QCOMPARE(verdict.keyFrames.value(0, -1), 0);
  }

  void theTtlGoesToBothKindsOfAddress() {
    UdpSettings settings = settingsFor(8000);
    settings.ttl = 9;
    const MuxPlan plan = UdpTarget::planFor(settings);
    int found = 0;
    for (const ElementProperty& property : plan.sink.properties)
      found += QByteArray(property.name).startsWith("ttl") && QByteArray(property.value) == "9" ? 1 : 0;
    QCOMPARE(found, 2);
  }

  void anInterfaceThatIsMissingIsTriedAgain() {
    UdpSettings settings = settingsFor(freePort());
    settings.bindInterface = QStringLiteral("nosuch0");
    LiveSlot live({std::make_shared<UdpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the network interface is not there"));
  }

  void anAddressWithoutAWayIsTriedAgain() {
    UdpSettings settings = settingsFor(8000);
    settings.address = QStringLiteral("no-such-name.invalid");
    LiveSlot live({std::make_shared<UdpTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("there is no way to the address"));
  }

  void aWayThatGoesAwayIsALoss() {
    const auto isGone = std::make_shared<std::atomic<bool>>(false);
    const UdpSettings settings = settingsFor(freePort());
    RetrySettings retry = settings.retry;
    retry.label = QStringLiteral("UDP");
    const auto make = [settings, isGone] {
      MuxPlan plan = UdpTarget::planFor(settings);
      plan.check = [isGone] { return *isGone ? QStringLiteral("gone") : QString(); };
      return std::make_unique<MuxWriter>(plan);
    };
    LiveSlot live({std::make_shared<Target>(TargetSettings{QStringLiteral("UDP")},
                                            std::make_unique<RetryingWriter>(retry, make))});
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
    *isGone = true;
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("gone"));
    *isGone = false;
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
  }

  void theWayIsLookedUpWhileItRuns() {
    const MuxPlan plan = UdpTarget::planFor(settingsFor(8000));
    QCOMPARE(plan.check(), QString());
    UdpSettings settings = settingsFor(8000);
    settings.bindInterface = QStringLiteral("nosuch0");
    QCOMPARE(UdpTarget::planFor(settings).check(), QString("the network interface is not there"));
  }

  void anEmptyAddressFails() {
    UdpSettings settings = settingsFor(8000);
    settings.address.clear();
    UdpTarget target(settings);
    QVERIFY(target.waitFinished(5000));
    QCOMPARE(target.figures().reason, QString("the address is not complete"));
  }
};

QTEST_GUILESS_MAIN(UdpTargetTest)
#include "tst_udp_target.moc"
