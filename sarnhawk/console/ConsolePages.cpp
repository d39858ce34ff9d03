#include "console/ConsolePages.h"

#include "tagKorviaShowPresentPlacement.h"

namespace {

using Place = PagePlace;

// The phases differ in their orders, so each has its own. A new page is named here in the phases that it
// takes part in.
constexpr Place kEngineOpenedOrder[] = {Place::Strips,  Place::Karaoke,   Place::Subtitle,   Place::Logo,
                                        Place::Overlay, Place::Component, Place::ProgramList};

// Lyrics and pictures step between the strips and the levels. The screen cut captures last, when everything
// on the screen has moved.
constexpr Place kFrameTickOrder[] = {Place::Strips, Place::Karaoke,  Place::Subtitle,
                                     Place::Logo,   Place::Overlay,  Place::Component,
                                     Place::Levels, Place::PaintPad, Place::ScreenCut};

// The statistics are fetched before whoever shows them.
constexpr Place kWorkTickOrder[] = {
    Place::Strips,      Place::Karaoke,          Place::Subtitle,    Place::Logo,
    Place::Overlay,     Place::Component,        Place::Transport,   Place::StatisticsFetch,
    Place::OutputWatch, Place::StatisticsWindow, Place::ProgramList, Place::StatusPublisher};

constexpr Place kHideAllOrder[] = {Place::ScreenCut,       Place::StatisticsWindow, Place::ChannelConfig,
                                   Place::ProgramList,     Place::Strips,           Place::PaintPad,
                                   Place::TransitionEditor};

// The floating windows go before the pages that they point at, the pages before the strips. The editor and
// the program list outlive the pages, which may still take.
constexpr Place kDestroyUiOrder[] = {
    Place::PaintPad,      Place::ScreenCut, Place::StatisticsWindow, Place::SoundControl,
    Place::ChannelConfig, Place::Karaoke,   Place::Subtitle,         Place::Logo,
    Place::Overlay,       Place::Component, Place::TransitionEditor, Place::ProgramList,
    Place::Strips};

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
  // Each page is looked up when its turn comes: the one before it may have taken the user interface down.
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
