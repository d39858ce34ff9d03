// The windows of the desktop. Any thread; each call opens a connection to the display of its own.
#pragma once
#include <QList>

#include "tagKorviaWindowHWNDInfo.h"

class KorviaUtil {
 public:
  /// Appends the windows that can be captured: the client list of the window manager, or where there is none
  /// the visible top-level windows with a title. Windows of this process are left out. `windowId` is the
  /// number of the window in the form "0x1a00004". Appends nothing where there is no X display.
  static void fillWindowHwndList(QList<tagKorviaWindowHWNDInfo>& windows);
};
