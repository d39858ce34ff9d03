// Holds the pages of the console by their places and calls each phase on them in its order. A place without a
// page is skipped. Console thread.
#pragma once
#include <map>
#include <span>

#include "console/ConsolePage.h"

class ConsolePages {
 public:
  /// The page is not owned. It must live until destroyUi has called it; a page whose place is not in the
  /// order of destroyUi must live as long as the console.
  void add(PagePlace place, ConsolePage* page) { _pages[place] = page; }
  /// Null when nothing stands at the place.
  ConsolePage* find(PagePlace place) const;

  void engineOpened();
  void frameTick();
  void workTick();
  /// Calls only the page of the item's kind, and no page for a kind without one.
  void placement(const tagKorviaShowPresentPlacement& placement);
  void hideAll();
  /// Removes each page from the list before it calls the page.
  void destroyUi();

 private:
  void reach(std::span<const PagePlace> order, void (ConsolePage::*phase)());

  std::map<PagePlace, ConsolePage*> _pages;
};
