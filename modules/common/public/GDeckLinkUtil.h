// The DeckLink cards of this machine, through GStreamer's elements for them. Any thread; blocks for at most
// two seconds.
#pragma once
#include <QList>

#include "tagGDecklinkCardInfo.h"

class GDeckLinkUtil {
 public:
  /// Appends the cards that can capture, or those that can play out. Nothing where the driver is not
  /// installed.
  static void enumDecklink(QList<tagGDecklinkCardInfo>& cards, bool isInput);
};
