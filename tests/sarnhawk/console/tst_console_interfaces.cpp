// Which interfaces the console answers for, and its services without an engine.
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"

namespace {

constexpr unsigned kVersion = 0x01010100;

void* ask(KorviaSarnhawk* console, const Identifier& id, unsigned version = kVersion) {
  return console->queryInterface(&id, version);
}

}  // namespace

class ConsoleInterfacesTest : public QObject {
  Q_OBJECT

 private slots:
  void interfaceRequestHonoursTheVersion() {
    ConsoleDesk desk;
    QVERIFY(ask(desk.console, kIKorviaSarnhawkId, 0x010101FF));
    QVERIFY(!ask(desk.console, kIKorviaSarnhawkId, 0x01010200));
    QVERIFY(!ask(desk.console, kIKorviaSarnhawkPrivId, 0x01010200));
    QVERIFY(!ask(desk.console, kIMainFrameId));
    QVERIFY(!desk.console->queryInterface(nullptr, kVersion));
  }

  void eachInterfaceIsAnsweredByItsOwnPointer() {
    ConsoleDesk desk;
    KorviaSarnhawk* console = desk.console;
    QCOMPARE(ask(console, kIKorviaSarnhawkId), static_cast<void*>(static_cast<IKorviaSarnhawk*>(console)));
    QCOMPARE(ask(console, kIKorviaSarnhawkPrivId),
             static_cast<void*>(static_cast<IKorviaSarnhawkPriv*>(console)));
    QCOMPARE(ask(console, kIKorviaShowThreadSinkId),
             static_cast<void*>(static_cast<IKorviaShowThreadSink*>(console)));
    QCOMPARE(ask(console, kIKorviaShowEngineSinkId),
             static_cast<void*>(static_cast<IKorviaShowEngineSink*>(console)));
    QCOMPARE(ask(console, kIKorviaWebServerSinkId),
             static_cast<void*>(static_cast<IKorviaWebServerSink*>(console)));
  }

  void unknownIsTheConsoleInterfaceInAnyVersion() {
    ConsoleDesk desk;
    auto* expected = static_cast<void*>(static_cast<IKorviaSarnhawk*>(desk.console));
    QCOMPARE(ask(desk.console, kIUnknownExId), expected);
    QCOMPARE(ask(desk.console, kIUnknownExId, 0x09090909), expected);
  }

  void incomeServerRequestIsPassedOnUnchanged() {
    ConsoleDesk desk;
    QVERIFY(desk.create());
    // The test's server answers its identifier in any version, which the console's own test would not.
    QVERIFY(ask(desk.console, kIKorviaRTMPIncomeServerId, 0x01010200));
  }

  void releaseDeletesTheConsole() {
    QWidget frame;
    QPointer<KorviaSarnhawk> console = new KorviaSarnhawk(nullptr, &frame);
    QVERIFY(static_cast<IKorviaSarnhawkPriv*>(console.data())->release());
    QVERIFY(console.isNull());
  }

  void servicesDropWhatNeedsAnEngine() {
    ConsoleDesk desk;
    desk.create();
    desk.console->postEvent(ShowEventTake, 0x10);
    QVERIFY(!desk.console->getSource(MediaChannel));
    QVERIFY(!desk.console->openMedia(0, "/a.mp4"));
    QVERIFY(desk.show.events().empty());
  }
};

QTEST_MAIN(ConsoleInterfacesTest)
#include "tst_console_interfaces.moc"
