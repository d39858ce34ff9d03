#include "KorviaUtil.h"

#include <unistd.h>

#include "DesktopWindows.h"

void KorviaUtil::fillWindowHwndList(QList<tagKorviaWindowHWNDInfo>& windows) {
  const korvia::DesktopWindows desktop;
  if (!desktop.isOpen())
    return;
  for (const xcb_window_t window : desktop.list()) {
    if (desktop.processId(window) == static_cast<quint32>(::getpid()))
      continue;
    windows.append(
        {desktop.title(window), QStringLiteral("0x%1").arg(window, 0, 16), desktop.program(window)});
  }
}
