// Base of everything that takes part in the life of the console: pages, floating windows, rows of the desk. A
// page overrides the phases that it needs, and ConsolePages calls them in the order of the places. Console
// thread.
#pragma once

struct tagKorviaShowPresentPlacement;

/// Names a page. ConsolePages.cpp lists the places in the order of each phase.
enum class PagePlace {
  Strips,
  Karaoke,
  Subtitle,
  Logo,
  Overlay,
  Component,
  ProgramList,
  Levels,
  PaintPad,
  ScreenCut,
  Transport,
  StatisticsFetch,
  OutputWatch,
  OutputStatus,
  OutputSettings,
  StatisticsWindow,
  StatusPublisher,
  IncomeNames,
  RemoteDesk,
  SoundControl,
  ChannelConfig,
  TransitionEditor,
};

class ConsolePage {
 public:
  virtual ~ConsolePage() = default;

  /// The engine has opened its channels and has not been sent the state of the desk yet. Pages send it their
  /// items here.
  virtual void onEngineOpened() {}
  /// The frame tick comes every 30 ms, the work tick every second. Both come before the engine exists, too.
  virtual void onFrameTick() {}
  virtual void onWorkTick() {}
  /// An item of this page's kind was dragged on a monitor.
  virtual void onPlacement(const tagKorviaShowPresentPlacement& /*placement*/) {}
  /// The frame is closing: hide every floating window.
  virtual void onHideAll() {}
  /// The user interface is destroyed. The page may delete itself, since no phase calls it afterwards.
  virtual void onDestroyUi() {}
};
