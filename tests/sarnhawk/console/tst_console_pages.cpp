// The order in which each phase reaches the pages of the console, and what the console does between them.
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "console/StatisticsFetch.h"
#include "tagKorviaShowPresentPlacement.h"

namespace {

// All places, in an order that no phase has.
const QList<QPair<PagePlace, QString>> kPlaces{
    {PagePlace::TransitionEditor, "transition editor"},
    {PagePlace::Logo, "logo"},
    {PagePlace::StatusPublisher, "status publisher"},
    {PagePlace::ScreenCut, "screen cut"},
    {PagePlace::StatisticsWindow, "statistics window"},
    {PagePlace::Component, "component"},
    {PagePlace::Strips, "strips"},
    {PagePlace::ProgramList, "program list"},
    {PagePlace::PaintPad, "paint pad"},
    {PagePlace::Overlay, "overlay"},
    {PagePlace::Transport, "transport"},
    {PagePlace::SoundControl, "sound control"},
    {PagePlace::Karaoke, "karaoke"},
    {PagePlace::Levels, "levels"},
    {PagePlace::StatisticsFetch, "statistics fetch"},
    {PagePlace::OutputSettings, "output settings"},
    {PagePlace::OutputWatch, "output watch"},
    {PagePlace::OutputStatus, "output status"},
    {PagePlace::Subtitle, "subtitle"},
    {PagePlace::ChannelConfig, "channel config"},
};

const QStringList kEngineOpenedOrder{"strips",  "karaoke",   "subtitle",    "logo",
                                     "overlay", "component", "program list"};
const QStringList kFrameTickOrder{"strips",    "karaoke", "subtitle",  "logo",      "overlay",
                                  "component", "levels",  "paint pad", "screen cut"};
const QStringList kWorkTickOrder{"strips",          "karaoke",       "subtitle",          "logo",
                                 "overlay",         "component",     "transport",         "statistics fetch",
                                 "output watch",    "output status", "statistics window", "program list",
                                 "status publisher"};
const QStringList kHideAllOrder{"screen cut", "statistics window", "channel config",    "program list",
                                "strips",     "paint pad",         "transition editor", "output settings"};
const QStringList kDestroyUiOrder{"paint pad",      "screen cut",     "statistics window", "sound control",
                                  "channel config", "karaoke",        "subtitle",          "logo",
                                  "overlay",        "component",      "transition editor", "program list",
                                  "strips",         "output settings"};

/// Stands at a place, notes what it is told as "phase name", and passes it on to the page that stood there.
class Witness : public ConsolePage {
 public:
  Witness(const QString& name, QStringList& log, ConsolePage* real) : _name(name), _log(log), _real(real) {}

  void onEngineOpened() override { note("engine opened", &ConsolePage::onEngineOpened); }
  void onFrameTick() override { note("frame tick", &ConsolePage::onFrameTick); }
  void onWorkTick() override { note("work tick", &ConsolePage::onWorkTick); }
  void onPlacement(const tagKorviaShowPresentPlacement& placement) override {
    _log.append("placement " + _name + ' ' + placement.key);
  }
  void onHideAll() override { note("hide all", &ConsolePage::onHideAll); }
  void onDestroyUi() override { note("destroy ui", &ConsolePage::onDestroyUi); }

  /// What the page does of its own in a phase.
  std::map<QString, std::function<void()>> actions;

 private:
  void note(const QString& phase, void (ConsolePage::*step)()) {
    _log.append(phase + ' ' + _name);
    if (const auto action = actions.find(phase); action != actions.end())
      action->second();
    if (_real)
      (_real->*step)();
  }

  QString _name;
  QStringList& _log;
  ConsolePage* _real;
};

class Witnesses {
 public:
  void takePlace(ConsolePages& pages, PagePlace place, const QString& name) {
    auto& witness = _witnesses[place];
    witness = std::make_unique<Witness>(name, _log, pages.find(place));
    pages.add(place, witness.get());
  }
  void takeAllPlaces(ConsolePages& pages) {
    for (const auto& [place, name] : kPlaces)
      takePlace(pages, place, name);
  }
  Witness& at(PagePlace place) { return *_witnesses.at(place); }

  void clearLog() { _log.clear(); }
  const QStringList& log() const { return _log; }
  /// Who was reached by a phase, in order.
  QStringList reachedBy(const QString& phase) const {
    QStringList names;
    for (const QString& line : _log) {
      if (line.startsWith(phase + ' '))
        names.append(line.mid(phase.size() + 1));
    }
    return names;
  }

 private:
  QStringList _log;
  std::map<PagePlace, std::unique_ptr<Witness>> _witnesses;
};

/// A console with a witness at each place. Pages are passed on to, so that the console works as ever.
class WatchedDesk {
 public:
  WatchedDesk() {
    desk.create();
    statistics = static_cast<StatisticsFetch*>(desk.console->pages().find(PagePlace::StatisticsFetch));
    witnesses.takeAllPlaces(desk.console->pages());
  }

  Witnesses witnesses;
  ConsoleDesk desk;
  const StatisticsFetch* statistics = nullptr;
};

tagKorviaShowPresentPlacement placementOf(int kind) {
  tagKorviaShowPresentPlacement placement;
  placement.kind = kind;
  placement.key = "{item}";
  return placement;
}

}  // namespace

class ConsolePagesTest : public QObject {
  Q_OBJECT

 private slots:
  void orderIsThatOfThePhaseWhateverCameFirst_data() {
    QTest::addColumn<bool>("isReversed");
    QTest::newRow("as listed") << false;
    QTest::newRow("the other way round") << true;
  }
  void orderIsThatOfThePhaseWhateverCameFirst() {
    QFETCH(bool, isReversed);
    ConsolePages pages;
    Witnesses witnesses;
    auto places = kPlaces;
    if (isReversed)
      std::reverse(places.begin(), places.end());
    for (const auto& [place, name] : places)
      witnesses.takePlace(pages, place, name);
    pages.engineOpened();
    pages.frameTick();
    pages.workTick();
    pages.hideAll();
    pages.destroyUi();
    QCOMPARE(witnesses.reachedBy("engine opened"), kEngineOpenedOrder);
    QCOMPARE(witnesses.reachedBy("frame tick"), kFrameTickOrder);
    QCOMPARE(witnesses.reachedBy("work tick"), kWorkTickOrder);
    QCOMPARE(witnesses.reachedBy("hide all"), kHideAllOrder);
    QCOMPARE(witnesses.reachedBy("destroy ui"), kDestroyUiOrder);
  }

  void placesWithoutAPageArePassedOver() {
    ConsolePages pages;
    Witnesses witnesses;
    witnesses.takePlace(pages, PagePlace::ScreenCut, "screen cut");
    witnesses.takePlace(pages, PagePlace::Overlay, "overlay");
    witnesses.takePlace(pages, PagePlace::ProgramList, "program list");
    pages.engineOpened();
    pages.frameTick();
    pages.workTick();
    pages.placement(placementOf(PresentKindLogo));
    pages.hideAll();
    pages.destroyUi();
    QCOMPARE(witnesses.log(),
             (QStringList{"engine opened overlay", "engine opened program list", "frame tick overlay",
                          "frame tick screen cut", "work tick overlay", "work tick program list",
                          "hide all screen cut", "hide all program list", "destroy ui screen cut",
                          "destroy ui overlay", "destroy ui program list"}));
  }

  void destroyedPagesAreNotReachedAgain() {
    ConsolePages pages;
    Witnesses witnesses;
    witnesses.takeAllPlaces(pages);
    pages.destroyUi();
    witnesses.clearLog();
    pages.frameTick();
    pages.placement(placementOf(PresentKindSubtitle));
    pages.hideAll();
    pages.destroyUi();
    // The levels stand on the form, which stays.
    QCOMPARE(witnesses.log(), QStringList{"frame tick levels"});
  }

  void pageThatTakesTheInterfaceDownSparesTheOnesBehindIt() {
    ConsolePages pages;
    Witnesses witnesses;
    witnesses.takeAllPlaces(pages);
    witnesses.at(PagePlace::Logo).actions["frame tick"] = [&] { pages.destroyUi(); };
    pages.frameTick();
    QCOMPARE(witnesses.reachedBy("destroy ui"), kDestroyUiOrder);
    QCOMPARE(witnesses.reachedBy("frame tick"),
             (QStringList{"strips", "karaoke", "subtitle", "logo", "levels"}));
  }

  void openedEngineIsToldToThePagesBeforeItGetsItsState() {
    WatchedDesk watched;
    ConsoleDesk& desk = watched.desk;
    watched.witnesses.at(PagePlace::Strips).actions["engine opened"] = [&desk] {
      desk.console->postEvent(ShowEventAddText);
    };
    watched.witnesses.at(PagePlace::ProgramList).actions["engine opened"] = [&desk] {
      desk.console->postEvent(ShowEventAddLogo);
    };
    QVERIFY(desk.open());
    QCOMPARE(watched.witnesses.reachedBy("engine opened"), kEngineOpenedOrder);
    QCOMPARE(desk.show.eventIds().mid(0, 4),
             (QList<quint64>{ShowEventOpen, ShowEventAddText, ShowEventAddLogo, ShowEventAudioMixMode}));
  }

  void frameTickOpensTheEngineAndThenReachesThePages() {
    WatchedDesk watched;
    ConsoleDesk& desk = watched.desk;
    bool hadEngine = false;
    watched.witnesses.at(PagePlace::Strips).actions["frame tick"] = [&] {
      hadEngine = desk.console->getEngine();
    };
    desk.frame.show();
    desk.passTime(1001);
    watched.witnesses.clearLog();
    desk.console->onFrameTimer();
    QVERIFY(hadEngine);
    QCOMPARE(watched.witnesses.reachedBy("frame tick"), kFrameTickOrder);
  }

  void workTickReachesThePages() {
    WatchedDesk watched;
    QVERIFY(watched.desk.open());
    watched.witnesses.clearLog();
    watched.desk.console->onWorkTimer();
    QCOMPARE(watched.witnesses.reachedBy("work tick"), kWorkTickOrder);
  }

  void statisticsAreFreshWhenTheirWindowTicks() {
    WatchedDesk watched;
    QVERIFY(watched.desk.open());
    watched.desk.show.outputStatistics.blocks[0].videoFps = 25;
    float seen = 0;
    watched.witnesses.at(PagePlace::StatisticsWindow).actions["work tick"] = [&] {
      seen = watched.statistics->outputs().blocks[0].videoFps;
    };
    watched.desk.console->onWorkTimer();
    QCOMPARE(seen, 25.0F);
  }

  void hideAllReachesThePages() {
    WatchedDesk watched;
    QVERIFY(watched.desk.open());
    watched.witnesses.clearLog();
    watched.desk.console->hideAll();
    QCOMPARE(watched.witnesses.reachedBy("hide all"), kHideAllOrder);
  }

  void closeReachesThePagesAfterTheEngineHasGone() {
    WatchedDesk watched;
    ConsoleDesk& desk = watched.desk;
    QVERIFY(desk.open());
    bool hadEngine = true;
    watched.witnesses.at(PagePlace::PaintPad).actions["destroy ui"] = [&] {
      hadEngine = desk.console->getEngine();
    };
    watched.witnesses.clearLog();
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QVERIFY(!hadEngine);
    QCOMPARE(watched.witnesses.reachedBy("destroy ui"), kDestroyUiOrder);
    watched.witnesses.clearLog();
    static_cast<IKorviaSarnhawk*>(desk.console)->close();
    QVERIFY(watched.witnesses.log().isEmpty());
  }

  void placementGoesToThePageOfItsKindAndBackToTheEngine_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("told");
    QTest::newRow("none") << 0 << QStringList();
    QTest::newRow("subtitle") << 1 << QStringList{"subtitle {item}"};
    QTest::newRow("logo") << 2 << QStringList{"logo {item}"};
    QTest::newRow("overlay") << 3 << QStringList{"overlay {item}"};
    QTest::newRow("component") << 4 << QStringList();
    QTest::newRow("negative") << -1 << QStringList();
  }
  void placementGoesToThePageOfItsKindAndBackToTheEngine() {
    QFETCH(int, kind);
    QFETCH(QStringList, told);
    WatchedDesk watched;
    ConsoleDesk& desk = watched.desk;
    QVERIFY(desk.open());
    const tagKorviaShowPresentPlacement placement = placementOf(kind);
    desk.report(ShowEventPlacementChanged, toVariant(placement));
    desk.settle();
    QCOMPARE(watched.witnesses.reachedBy("placement"), told);
    const auto posted = desk.show.eventsOf(ShowEventPlacementCommit);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(fromVariant<tagKorviaShowPresentPlacement>(posted[0].args[0]), placement);
  }
};

QTEST_MAIN(ConsolePagesTest)
#include "tst_console_pages.moc"
