#include "console/ConsolePages.h"

#include "tagKorviaShowPresentPlacement.h"

namespace {

using Place = PagePlace;

// Each phase has an order of its own. A new page is added to the orders of the phases that it needs.
constexpr Place kEngineOpenedOrder[] = {Place::Strips,      Place::Karaoke,    Place::Subtitle,
                                        Place::Logo,        Place::Overlay,    Place::Component,
                                        Place::ProgramList, Place::IncomeNames};

// The screen cut captures last, so that it sees everything that the tick has changed on the screen.
constexpr Place kFrameTickOrder[] = {Place::Strips,   Place::Karaoke,   Place::Subtitle, Place::Logo,
                                     Place::Overlay,  Place::Component, Place::Levels,   Place::RemoteDesk,
                                     Place::PaintPad, Place::ScreenCut};

// The statistics are fetched before the pages that show them.
constexpr Place kWorkTickOrder[] = {
    Place::Strips,          Place::Karaoke,      Place::Subtitle,         Place::Logo,
    Place::Overlay,         Place::Component,    Place::Transport,        Place::StatisticsFetch,
    Place::OutputWatch,     Place::OutputStatus, Place::StatisticsWindow, Place::ProgramList,
    Place::StatusPublisher, Place::IncomeNames};

constexpr Place kHideAllOrder[] = {Place::ScreenCut,        Place::StatisticsWindow, Place::ChannelConfig,
                                   Place::ProgramList,      Place::Strips,           Place::PaintPad,
                                   Place::TransitionEditor, Place::OutputSettings};

// Floating windows are destroyed before the pages that they point at, and pages before the strips. The editor
// and the program list are destroyed after the pages, which may still use them.
constexpr Place kDestroyUiOrder[] = {
    Place::PaintPad,      Place::ScreenCut,     Place::StatisticsWindow, Place::SoundControl,
    Place::ChannelConfig, Place::Karaoke,       Place::Subtitle,         Place::Logo,
    Place::Overlay,       Place::Component,     Place::TransitionEditor, Place::ProgramList,
    Place::Strips,        Place::OutputSettings};

constexpr struct {
  qint32 kind;
  Place place;
} kPlacementPlaces[] = {{PresentKindSubtitle, Place::Subtitle},
                        {PresentKindLogo, Place::Logo},
                        {PresentKindOverlay, Place::Overlay}};

}  // namespace

ConsolePage* ConsolePages::find(PagePlace place) const {
  const auto found = _pages.find(place);
  return found == _pages.end() ? nullptr : found->second;
}

void ConsolePages::reach(std::span<const PagePlace> order, void (ConsolePage::*phase)()) {
  // Each page is looked up at its turn, because the page before it may have destroyed the user interface.
  for (const PagePlace place : order) {
    if (ConsolePage* page = find(place))
      (page->*phase)();
  }
}

void ConsolePages::engineOpened() {
  reach(kEngineOpenedOrder, &ConsolePage::onEngineOpened);
}

void ConsolePages::frameTick() {
  reach(kFrameTickOrder, &ConsolePage::onFrameTick);
}

void ConsolePages::workTick() {
  reach(kWorkTickOrder, &ConsolePage::onWorkTick);
}

void ConsolePages::placement(const tagKorviaShowPresentPlacement& placement) {
  for (const auto& [kind, place] : kPlacementPlaces) {
    ConsolePage* page = kind == placement.kind ? find(place) : nullptr;
    if (page)
      page->onPlacement(placement);
  }
}

void ConsolePages::hideAll() {
  reach(kHideAllOrder, &ConsolePage::onHideAll);
}

void ConsolePages::destroyUi() {
  for (const PagePlace place : kDestroyUiOrder) {
    ConsolePage* page = find(place);
    _pages.erase(place);
    if (page)
      page->onDestroyUi();
  }
}
