// The pages of the console by their places, and who comes when in each phase. A place without a page is
// passed over. Console thread.
#pragma once
#include <map>
#include <span>

#include "console/ConsolePage.h"

class ConsolePages {
 public:
  /// The page is not owned. It must stay until destroyUi has reached it; a page that destroyUi does not reach
  /// must stay as long as its console.
  void add(PagePlace place, ConsolePage* page) { _pages[place] = page; }
  /// Null when nothing stands at the place.
  ConsolePage* find(PagePlace place) const;

  void engineOpened();
  void frameTick();
  void workTick();
  /// Tells the page of the item's kind alone; nobody for another kind.
  void placement(const tagKorviaShowPresentPlacement& placement);
  void hideAll();
  /// Forgets each page before it is reached.
  void destroyUi();

 private:
  void reach(std::span<const PagePlace> order, void (ConsolePage::*phase)());

  std::map<PagePlace, ConsolePage*> _pages;
};
