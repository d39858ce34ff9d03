// Modules of other compilers call each other's objects through the tables of the interfaces. Each operation
// is called both ways: by C++ through a table made by hand, and by hand through the table of a real object.
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "CKorviaRTMPIncomeServerHelper.h"
#include "CKorviaWebServerHelper.h"
#include "ConsoleDesk.h"
#include "IGWidgetAudioSpectrum.h"
#include "IKorviaWebServerSink.h"
#include "InterfaceTables.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "shell/MainFrame.h"
#include "transitions/GWidgetTransitionEffectConfig.h"

#if defined(__GNUC__)

namespace {

constexpr unsigned kVersion = 0x01010100;

/// What the hand-made operations were called with.
struct Calls {
  QStringList names;
  QVariantList args;
  void* object = nullptr;
};
Calls& calls() {
  static Calls instance;
  return instance;
}

template <class... Args>
void note(void* object, const char* name, const Args&... args) {
  calls().object = object;
  calls().names.append(QLatin1String(name));
  (calls().args.append(QVariant::fromValue(args)), ...);
}

int kAnswer = 0;
template <class T>
T* someAddress() {
  return reinterpret_cast<T*>(&kAnswer);
}

const RootTable kRoot{
    [](void* self) {
      note(self, "isValid");
      return true;
    },
    [](void* self) {
      note(self, "release");
      return true;
    },
    [](void* self, const Identifier* id, unsigned version) -> void* {
      note(self, "queryInterface", quint64(id->second), version);
      return self;
    },
};

/// Calls the three operations of the root and clears what was noted.
template <class Interface, class Table>
bool rootAnswers(HandMadeObject<Interface, Table>& object) {
  calls() = {};
  Interface* interface = object.get();
  const bool answers = interface->isValid() && interface->release() &&
                       interface->queryInterface(&kIMainFrameId, kVersion) == object.address();
  const bool noted = calls().names == QStringList({"isValid", "release", "queryInterface"}) &&
                     calls().args == QVariantList({quint64(kIMainFrameId.second), kVersion}) &&
                     calls().object == object.address();
  calls() = {};
  return answers && noted;
}

/// The frame without a console, with what its operations were asked for.
class NotedFrame final : public MainFrame {
 public:
  void showMainMenu(QWidget*) override { names.append("showMainMenu"); }
  void showOutputConfig() override { names.append("showOutputConfig"); }
  void showOutputStatistics() override { names.append("showOutputStatistics"); }
  void showNavProgramList() override { names.append("showNavProgramList"); }
  void takeSnapshot() override { names.append("takeSnapshot"); }
  void pgmPlayback() override { names.append("pgmPlayback"); }
  void quitApp() override { names.append("quitApp"); }
  bool create(void*, IProgressSink*, void*, const tagKorviaProductInfo*, const QString& rootPath) override {
    names.append("create " + rootPath);
    return true;
  }
  void close() override { names.append("close"); }

  QStringList names;
};

}  // namespace

Q_DECLARE_METATYPE(const void*)

class InterfaceTablesTest : public QObject {
  Q_OBJECT

 private slots:
  void handMadeConsole();
  void handMadeFrame();
  void handMadeServices();
  void handMadeThreadSink();
  void handMadeEngineSink();
  void handMadeSource();
  void handMadeServers();
  void handMadeSpectrum();
  void handMadeProgress();
  void frameByItsTables();
  void servicesByTheirTable();
  void sinksByTheirTables();
  void sourceByItsTable();
  void serversByTheirTables();
};

void InterfaceTablesTest::handMadeConsole() {
  HandMadeObject<IKorviaSarnhawk, SarnhawkTable> object({
      kRoot,
      [](void* self, void* reserved1, IProgressSink* progress, void* reserved2,
         const tagKorviaProductInfo* product, const QString& rootPath) {
        note(self, "create", rootPath);
        return reserved1 == &kAnswer && !progress && !reserved2 &&
               product == someAddress<tagKorviaProductInfo>();
      },
      [](void* self) { note(self, "close"); },
  });
  QVERIFY(rootAnswers(object));
  QVERIFY(object.get()->create(&kAnswer, nullptr, nullptr, someAddress<tagKorviaProductInfo>(), "root/"));
  object.get()->close();
  QCOMPARE(calls().names, QStringList({"create", "close"}));
  QCOMPARE(calls().args, QVariantList({"root/"}));
}

void InterfaceTablesTest::handMadeFrame() {
  HandMadeObject<IMainFrame, MainFrameTable> object({
      kRoot,
      [](void* self) {
        note(self, "getWidget");
        return someAddress<QWidget>();
      },
      [](void* self, QWidget* button) { note(self, "showMainMenu", button == someAddress<QWidget>()); },
      [](void* self) { note(self, "showOutputConfig"); },
      [](void* self) { note(self, "showOutputStatistics"); },
      [](void* self) { note(self, "showNavProgramList"); },
      [](void* self) { note(self, "takeSnapshot"); },
      [](void* self) { note(self, "pgmPlayback"); },
      [](void* self) { note(self, "quitApp"); },
  });
  QVERIFY(rootAnswers(object));
  IMainFrame* frame = object.get();
  QVERIFY(frame->getWidget() == someAddress<QWidget>());
  frame->showMainMenu(someAddress<QWidget>());
  frame->showOutputConfig();
  frame->showOutputStatistics();
  frame->showNavProgramList();
  frame->takeSnapshot();
  frame->pgmPlayback();
  frame->quitApp();
  QCOMPARE(calls().names,
           QStringList({"getWidget", "showMainMenu", "showOutputConfig", "showOutputStatistics",
                        "showNavProgramList", "takeSnapshot", "pgmPlayback", "quitApp"}));
  QCOMPARE(calls().args, QVariantList({true}));
}

void InterfaceTablesTest::handMadeServices() {
  HandMadeObject<IKorviaSarnhawkPriv, SarnhawkPrivTable> object({
      kRoot,
      [](void* self) {
        note(self, "getMainWindow");
        return someAddress<KorviaSarnhawk>();
      },
      [](void* self) {
        note(self, "getRootPath");
        return QStringLiteral("root/");
      },
      [](void* self) {
        note(self, "getConfig");
        return someAddress<tagKorviaSarnhawkConfig>();
      },
      [](void* self) {
        note(self, "getEngine");
        return someAddress<KorviaShowEngine>();
      },
      [](void* self, quint64 id, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
        note(self, "postEvent", id);
        calls().args << a1 << a2 << a3 << a4;
      },
      [](void* self) {
        note(self, "getSystemFontInfo");
        return someAddress<tagGSystemTTFFontInfo>();
      },
      [](void* self) {
        note(self, "getComponentCatalog");
        return someAddress<QList<tagKorviaComponentParam*>>();
      },
      [](void* self) {
        note(self, "getStageCatalog");
        return someAddress<QList<tagKorviaComponentParam*>>();
      },
      [](void* self, int channel, QWidget*) { note(self, "showSoundControl", channel); },
      [](void* self, int index) { note(self, "showTransitionConfig", index); },
      [](void* self, QWidget*, int channel) { note(self, "showChannelConfig", channel); },
      [](void* self, unsigned what, int channel) { note(self, "saveChanges", what, channel); },
      [](void* self, int index) { note(self, "updateTakeButton", index); },
      [](void* self, int channel, int index) { note(self, "takeChannel", channel, index); },
      [](void* self, int index) { note(self, "takeSelected", index); },
      [](void* self, int catalog) {
        note(self, "getEffectList", catalog);
        return someAddress<QList<GListWidgetItemInfo>>();
      },
      [](void* self, KorviaShowObjectID id) {
        note(self, "getSource", int(id));
        return someAddress<IKorviaShowSource>();
      },
  });
  QVERIFY(rootAnswers(object));
  IKorviaSarnhawkPriv* services = object.get();
  QVERIFY(services->getMainWindow() == someAddress<KorviaSarnhawk>());
  QCOMPARE(services->getRootPath(), QStringLiteral("root/"));
  QVERIFY(services->getConfig() == someAddress<tagKorviaSarnhawkConfig>());
  QVERIFY(services->getEngine() == someAddress<KorviaShowEngine>());
  services->postEvent(41, 1, 2, 3, 4);
  QVERIFY(services->getSystemFontInfo() == someAddress<tagGSystemTTFFontInfo>());
  QVERIFY(services->getComponentCatalog());
  QVERIFY(services->getStageCatalog());
  services->showSoundControl(5, nullptr);
  services->showTransitionConfig(6);
  services->showChannelConfig(nullptr, 7);
  services->saveChanges(8, 9);
  services->updateTakeButton(10);
  services->takeChannel(11, 12);
  services->takeSelected(13);
  QVERIFY(services->getEffectList(14));
  QVERIFY(services->getSource(PVMObject) == someAddress<IKorviaShowSource>());
  QCOMPARE(calls().names,
           QStringList({"getMainWindow", "getRootPath", "getConfig", "getEngine", "postEvent",
                        "getSystemFontInfo", "getComponentCatalog", "getStageCatalog", "showSoundControl",
                        "showTransitionConfig", "showChannelConfig", "saveChanges", "updateTakeButton",
                        "takeChannel", "takeSelected", "getEffectList", "getSource"}));
  QCOMPARE(calls().args,
           QVariantList({quint64(41), 1, 2, 3, 4, 5, 6, 7, 8u, 9, 10, 11, 12, 13, 14, int(PVMObject)}));
}

void InterfaceTablesTest::handMadeThreadSink() {
  HandMadeObject<IKorviaShowThreadSink, ThreadSinkTable> object({
      kRoot,
      [](void* self, quint64 id, quint64 result, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
        note(self, "onPostEventResult", id, result);
        calls().args << a1 << a2 << a3 << a4;
      },
  });
  QVERIFY(rootAnswers(object));
  object.get()->onPostEventResult(7, 8, 1, 2, 3, 4);
  QCOMPARE(calls().names, QStringList({"onPostEventResult"}));
  QCOMPARE(calls().args, QVariantList({quint64(7), quint64(8), 1, 2, 3, 4}));
}

void InterfaceTablesTest::handMadeEngineSink() {
  HandMadeObject<IKorviaShowEngineSink, EngineSinkTable> object({
      kRoot,
      [](void* self, KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c, const void* d,
         int e) { note(self, "onAudioData", int(id), data == &kAnswer, a, b, c, d == &kAnswer, e); },
      [](void* self, KorviaShowObjectID id) {
        note(self, "lockBackground", int(id));
        return QImage(3, 2, QImage::Format_ARGB32);
      },
      [](void* self, KorviaShowObjectID id, QImage& image) {
        note(self, "unlockBackground", int(id), image.size());
      },
      [](void* self, KorviaShowObjectID id, int what, int param) {
        note(self, "onSourceNotify", int(id), what, param);
      },
  });
  QVERIFY(rootAnswers(object));
  IKorviaShowEngineSink* sink = object.get();
  sink->onAudioData(KaraokeObject, &kAnswer, 1, 2, 3, &kAnswer, 4);
  QImage image = sink->lockBackground(PGMObject);
  QCOMPARE(image.size(), QSize(3, 2));
  sink->unlockBackground(PGMObject, image);
  sink->onSourceNotify(PVMObject, 5, 6);
  QCOMPARE(calls().names,
           QStringList({"onAudioData", "lockBackground", "unlockBackground", "onSourceNotify"}));
  QCOMPARE(calls().args, QVariantList({int(KaraokeObject), true, 1u, 2u, 3, true, 4, int(PGMObject),
                                       int(PGMObject), QSize(3, 2), int(PVMObject), 5, 6}));
}

void InterfaceTablesTest::handMadeSource() {
  HandMadeObject<IKorviaShowSource, ShowSourceTable> object({
      kRoot,
      [](void*) { return StageChannel; },
      [](void*) { return &kAnswer; },
      [](void*) -> const tagKorviaFormatInfo* { return someAddress<tagKorviaFormatInfo>(); },
      [](void*, tagKorviaSourceLinkState& state) { state.rate = 7.0F; },
      [](void* self) { note(self, "play"); },
      [](void* self) { note(self, "stop"); },
      [](void* self) { note(self, "pause"); },
      [](void* self, bool hold) { note(self, "setHold", hold); },
      [](void* self) { note(self, "prev"); },
      [](void* self) { note(self, "next"); },
      [](void*, qint64& duration) { duration = 14; },
      [](void*, qint64& time) { time = 15; },
      [](void*, qint64& frames) { frames = 16; },
      [](void*, qint64& position) { position = 17; },
      [](void* self, qint64 position) { note(self, "setPosition", position); },
      [](void*) { return 19; },
      [](void*) { return 20; },
      [](void*) { return 21; },
  });
  QVERIFY(rootAnswers(object));
  IKorviaShowSource* source = object.get();
  QCOMPARE(source->getObjectId(), StageChannel);
  QCOMPARE(source->getSourceInfo(), &kAnswer);
  QVERIFY(source->getFormat() == someAddress<tagKorviaFormatInfo>());
  tagKorviaSourceLinkState state;
  source->getState(state);
  QCOMPARE(state.rate, 7.0F);
  source->play();
  source->stop();
  source->pause();
  source->setHold(true);
  source->prev();
  source->next();
  source->setPosition(18);
  QCOMPARE(calls().names, QStringList({"play", "stop", "pause", "setHold", "prev", "next", "setPosition"}));
  QCOMPARE(calls().args, QVariantList({true, qint64(18)}));
  qint64 value = 0;
  source->getDuration(value);
  QCOMPARE(value, 14);
  source->getTime(value);
  QCOMPARE(value, 15);
  source->getFrameCount(value);
  QCOMPARE(value, 16);
  source->getPosition(value);
  QCOMPARE(value, 17);
  QCOMPARE(source->getPlayState(), 19);
  QCOMPARE(source->getItemCount(), 20);
  QCOMPARE(source->getItemIndex(), 21);
}

void InterfaceTablesTest::handMadeServers() {
  HandMadeObject<IKorviaWebServerSink, WebServerSinkTable> sink({kRoot, [](void*) { return 4; }});
  QVERIFY(rootAnswers(sink));
  QCOMPARE(sink.get()->onWebRequest(), 4);

  HandMadeObject<IKorviaWebServer, WebServerTable> web({
      kRoot,
      [](void* self, IKorviaWebServerSink* told, int* port) {
        note(self, "open", told == someAddress<IKorviaWebServerSink>(), *port);
        return -5;
      },
      [](void* self) { note(self, "close"); },
      [](void* self, const QString& path, const QString& folder) {
        note(self, "serveSegments", path, folder);
      },
  });
  QVERIFY(rootAnswers(web));
  int port = 8800;
  QCOMPARE(web.get()->open(someAddress<IKorviaWebServerSink>(), &port), -5);
  web.get()->close();
  web.get()->serveSegments("/hls/0", "/folder");
  QCOMPARE(calls().names, QStringList({"open", "close", "serveSegments"}));
  QCOMPARE(calls().args, QVariantList({true, 8800, "/hls/0", "/folder"}));

  HandMadeObject<IKorviaRTMPIncomeServer, IncomeServerTable> income({
      kRoot,
      [](void* self, const QString& rootPath, int wanted, const QString& htmlPath) {
        note(self, "open", rootPath, wanted, htmlPath);
        return -6;
      },
      [](void*) { return true; },
      [](void*) { return 1935; },
      [](void* self) { note(self, "close"); },
  });
  QVERIFY(rootAnswers(income));
  QCOMPARE(income.get()->open("root/", 19000, "root/html"), -6);
  QVERIFY(income.get()->isRunning());
  QCOMPARE(income.get()->rtmpPort(), 1935);
  income.get()->close();
  QCOMPARE(calls().names, QStringList({"open", "close"}));
  QCOMPARE(calls().args, QVariantList({"root/", 19000, "root/html"}));
}

void InterfaceTablesTest::handMadeSpectrum() {
  HandMadeObject<IGWidgetAudioSpectrum, AudioSpectrumTable> object({
      kRoot,
      [](void* self, QWidget* parent, int reserved) {
        note(self, "attach", parent == someAddress<QWidget>(), reserved);
      },
      [](void* self, KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c, const void* d,
         int e) { note(self, "feed", int(id), data == &kAnswer, a, b, c, d == &kAnswer, e); },
      [](void* self) { note(self, "detach"); },
  });
  QVERIFY(rootAnswers(object));
  object.get()->attach(someAddress<QWidget>(), 0);
  object.get()->feed(KaraokeObject, &kAnswer, 1, 2, 3, &kAnswer, 4);
  object.get()->detach();
  QCOMPARE(calls().names, QStringList({"attach", "feed", "detach"}));
  QCOMPARE(calls().args, QVariantList({true, 0, int(KaraokeObject), true, 1u, 2u, 3, true, 4}));
}

void InterfaceTablesTest::handMadeProgress() {
  HandMadeObject<IProgressSink, ProgressSinkTable> object({
      [](void* self) { note(self, "onProgressBegin"); },
      [](void* self) { note(self, "onProgressEnd"); },
      [](void* self, const QString& text) { note(self, "onProgressText", text); },
  });
  calls() = {};
  object.get()->onProgressText("Please Wait");
  QCOMPARE(calls().names, QStringList({"onProgressText"}));
  QCOMPARE(calls().args, QVariantList({"Please Wait"}));
}

void InterfaceTablesTest::frameByItsTables() {
  auto* frame = new NotedFrame;
  const QPointer<QWidget> watcher(frame);
  auto* object = static_cast<IMainFrame*>(frame);
  const auto& table = tableOf<MainFrameTable>(object);
  QVERIFY(table.root.isValid(object));
  QCOMPARE(table.root.queryInterface(object, &kIMainFrameId, kVersion), static_cast<void*>(object));
  QCOMPARE(table.getWidget(object), static_cast<QWidget*>(frame));
  table.showMainMenu(object, nullptr);
  table.showOutputConfig(object);
  table.showOutputStatistics(object);
  table.showNavProgramList(object);
  table.takeSnapshot(object);
  table.pgmPlayback(object);
  table.quitApp(object);
  QCOMPARE(frame->names, QStringList({"showMainMenu", "showOutputConfig", "showOutputStatistics",
                                      "showNavProgramList", "takeSnapshot", "pgmPlayback", "quitApp"}));
  frame->names.clear();

  auto* console = static_cast<IKorviaSarnhawk*>(frame);
  const auto& consoleTable = tableOf<SarnhawkTable>(console);
  QVERIFY(consoleTable.root.isValid(console));
  QCOMPARE(consoleTable.root.queryInterface(console, &kIMainFrameId, kVersion), static_cast<void*>(object));
  QVERIFY(consoleTable.create(console, nullptr, nullptr, nullptr, nullptr, "root/"));
  consoleTable.close(console);
  QCOMPARE(frame->names, QStringList({"create root/", "close"}));
  QVERIFY(consoleTable.root.release(console));
  QVERIFY(!watcher);
}

void InterfaceTablesTest::servicesByTheirTable() {
  ConsoleDesk desk;
  QVERIFY(desk.start());
  IKorviaSarnhawkPriv* object = desk.console;
  const auto& table = tableOf<SarnhawkPrivTable>(object);
  QVERIFY(table.root.isValid(object));
  QCOMPARE(table.root.queryInterface(object, &kIKorviaSarnhawkPrivId, kVersion), static_cast<void*>(object));
  QCOMPARE(table.getMainWindow(object), static_cast<KorviaSarnhawk*>(desk.console));
  QCOMPARE(table.getRootPath(object), desk.rootPath);
  QCOMPARE(table.getConfig(object), desk.console->getConfig());
  QVERIFY(table.getEngine(object));
  QCOMPARE(table.getEngine(object), desk.console->getEngine());
  QCOMPARE(table.getSystemFontInfo(object), desk.console->getSystemFontInfo());
  QCOMPARE(table.getComponentCatalog(object), desk.console->getComponentCatalog());
  QCOMPARE(table.getStageCatalog(object), desk.console->getStageCatalog());
  QVERIFY(table.getComponentCatalog(object) != table.getStageCatalog(object));
  table.showSoundControl(object, MediaChannel, nullptr);
  table.showTransitionConfig(object, 1);
  auto* transitionConfig = desk.console->findChild<GWidgetTransitionEffectConfig*>();
  QVERIFY(transitionConfig && transitionConfig->isVisible());
  QPushButton button;
  table.showChannelConfig(object, &button, MediaChannel + 1);
  auto* channelConfig = desk.console->findChild<GWidgetDisplayObjectConfig*>();
  QVERIFY(channelConfig && channelConfig->isVisible());
  QCOMPARE(channelConfig->objectId(), MediaChannel + 1);
  desk.console->savedChanges.clear();
  table.saveChanges(object, 8, 9);
  QCOMPARE(desk.console->savedChanges, SavedChanges({{8, 9}}));
  table.updateTakeButton(object, 0);
  QCOMPARE(table.getEffectList(object, 8), desk.console->getEffectList(8));
  desk.show.addSource(1);
  QVERIFY(table.getSource(object, KorviaShowObjectID(MediaChannel + 1)));
  QVERIFY(!table.getSource(object, KorviaShowObjectID(MediaChannel + 2)));

  desk.settle();
  desk.show.clearEvents();
  table.takeChannel(object, MediaChannel + 2, 0);
  table.takeSelected(object, 1);
  table.postEvent(object, ShowEventVolume, int(PGMObject), 0.5, QVariant(), QVariant());
  desk.settle();
  const auto takes = desk.show.eventsOf(ShowEventTake);
  QCOMPARE(takes.size(), std::size_t(2));
  QCOMPARE(takes[0].args[0].toInt(), MediaChannel + 2);
  QCOMPARE(takes[1].args[0].toInt(), desk.console->getConfig()->pvmChannel);
  const auto volumes = desk.show.eventsOf(ShowEventVolume);
  QCOMPARE(volumes.size(), std::size_t(1));
  QCOMPARE(volumes[0].args[1].toDouble(), 0.5);
}

void InterfaceTablesTest::sinksByTheirTables() {
  ConsoleDesk desk;
  QVERIFY(desk.start());
  IKorviaShowThreadSink* threadSink = desk.console;
  const auto& threadTable = tableOf<ThreadSinkTable>(threadSink);
  QVERIFY(threadTable.root.isValid(threadSink));
  QSignalSpy results(desk.console, &KorviaSarnhawk::sig_PostEventResult);
  threadTable.onPostEventResult(threadSink, 9998, 2, 3, 4, 5, 6);
  QCOMPARE(results.size(), 1);
  QCOMPARE(results[0], QVariantList({quint64(9998), quint64(2), 3, 4, 5, 6}));

  IKorviaShowEngineSink* engineSink = desk.console;
  const auto& engineTable = tableOf<EngineSinkTable>(engineSink);
  QCOMPARE(engineTable.root.queryInterface(engineSink, &kIKorviaShowThreadSinkId, kVersion),
           static_cast<void*>(threadSink));
  engineTable.onAudioData(engineSink, KaraokeObject, nullptr, 0, 0, 0, nullptr, 0);
  QImage image = engineTable.lockBackground(engineSink, PVMObject);
  QVERIFY(image.isNull());
  engineTable.unlockBackground(engineSink, PVMObject, image);
  desk.show.clearEvents();
  const auto selected = KorviaShowObjectID(desk.console->getConfig()->pvmChannel);
  engineTable.onSourceNotify(engineSink, selected, kSourceNotifySwitch, MediaChannel + 2);
  desk.settle();
  QCOMPARE(desk.show.count(ShowEventTake), 1);

  IKorviaWebServerSink* webSink = desk.console;
  const auto& webTable = tableOf<WebServerSinkTable>(webSink);
  QVERIFY(webTable.root.isValid(webSink));
  QCOMPARE(webTable.onWebRequest(webSink), 0);
}

void InterfaceTablesTest::sourceByItsTable() {
  ConsoleDesk desk;
  QVERIFY(desk.start());
  tagKorviaShowSourceInfo info;
  info.kind = 17;
  ScriptedSource* script = desk.show.addSource(1, info);
  script->duration = 14;
  script->time = 15;
  script->frameCount = 16;
  script->position = 17;
  script->playState = Paused;
  script->itemCount = 20;
  script->itemIndex = 3;
  IKorviaShowSource* object = desk.console->getSource(KorviaShowObjectID(MediaChannel + 1));
  QVERIFY(object);
  const auto& table = tableOf<ShowSourceTable>(object);
  QVERIFY(table.root.isValid(object));
  QVERIFY(!table.root.queryInterface(object, &kIMainFrameId, kVersion));
  QVERIFY(table.root.release(object));
  QCOMPARE(table.getObjectId(object), script->id);
  QCOMPARE(*table.getSourceInfo(object), 17);
  QVERIFY(table.getFormat(object) == &script->format);
  tagKorviaSourceLinkState state;
  table.getState(object, state);
  QCOMPARE(state.rate, script->rate);
  script->calls.clear();
  table.play(object);
  table.stop(object);
  table.pause(object);
  table.setHold(object, true);
  table.prev(object);
  table.next(object);
  table.setPosition(object, 18);
  QCOMPARE(script->calls, QStringList({"play", "stop", "pause", "hold", "prev", "next", "seek 18"}));
  qint64 value = 0;
  table.getDuration(object, value);
  QCOMPARE(value, 14);
  table.getTime(object, value);
  QCOMPARE(value, 15);
  table.getFrameCount(object, value);
  QCOMPARE(value, 16);
  table.getPosition(object, value);
  QCOMPARE(value, 17);
  QCOMPARE(table.getPlayState(object), int(Paused));
  QCOMPARE(table.getItemCount(object), 20);
  QCOMPARE(table.getItemIndex(object), 3);
}

void InterfaceTablesTest::serversByTheirTables() {
  CKorviaWebServerHelper web;
  QVERIFY(web.create());
  const auto& webTable = tableOf<WebServerTable>(web._interface);
  QVERIFY(webTable.root.isValid(web._interface));
  int port = 0;
  QCOMPARE(webTable.open(web._interface, nullptr, &port), 0);
  QVERIFY(port > 0);
  webTable.serveSegments(web._interface, QString(), QString());
  webTable.close(web._interface);
  QVERIFY(webTable.root.release(web._interface));
  web._interface = nullptr;

  CKorviaRTMPIncomeServerHelper income;
  QVERIFY(income.create());
  const auto& incomeTable = tableOf<IncomeServerTable>(income._interface);
  QVERIFY(incomeTable.root.isValid(income._interface));
  const QTemporaryDir folder;
  QVERIFY(incomeTable.open(income._interface, folder.path(), -1, folder.path()) < 0);
  QVERIFY(!incomeTable.isRunning(income._interface));
  QCOMPARE(incomeTable.rtmpPort(income._interface), 0);
  incomeTable.close(income._interface);
  QVERIFY(incomeTable.root.release(income._interface));
  income._interface = nullptr;
}

#else

class InterfaceTablesTest : public QObject {
  Q_OBJECT
};

#endif

QTEST_MAIN(InterfaceTablesTest)
#include "tst_interface_tables.moc"
