// A window of the desktop, as lists show it and as a source captures it. A plain value, usable from any
// thread.
#pragma once
#include <QMetaType>
#include <QString>

/// A window of the desktop that can be captured; lists show the title and the program.
struct tagKorviaWindowHWNDInfo {
  QString title;
  QString windowId;
  QString program;

  friend bool operator==(const tagKorviaWindowHWNDInfo&, const tagKorviaWindowHWNDInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaWindowHWNDInfo)
