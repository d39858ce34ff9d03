// Whatever takes part in the life of the console: a page, a floating window, a row of the desk. A page does
// what it needs to in the phases that it overrides; ConsolePages reaches it there by its place. Console
// thread.
#pragma once

struct tagKorviaShowPresentPlacement;

/// Names a page; when its turn comes in each phase is told in ConsolePages.cpp.
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
  StatisticsWindow,
  StatusPublisher,
  SoundControl,
  ChannelConfig,
  TransitionEditor,
};

class ConsolePage {
 public:
  virtual ~ConsolePage() = default;

  /// The engine has its channels and not yet its state: items are handed to it here.
  virtual void onEngineOpened() {}
  /// Every 30 ms and every second, from before the engine is there.
  virtual void onFrameTick() {}
  virtual void onWorkTick() {}
  /// An item of this page's kind was dragged on a monitor.
  virtual void onPlacement(const tagKorviaShowPresentPlacement& /*placement*/) {}
  /// The frame goes off the screen, and all that floats goes with it.
  virtual void onHideAll() {}
  /// The user interface is taken down; the page may delete itself, since nothing reaches it afterwards.
  virtual void onDestroyUi() {}
};
