// What the console does differently for each kind of item over the picture. Plain values, console thread.
#pragma once
#include <QtGlobal>

struct ItemKind {
  quint64 showEvent;
  quint64 hideEvent;
  quint64 updateEvent;
  /// A mask of ShowChange.
  unsigned change;
  /// Marked for translation in the context "ItemKind".
  const char* deleteQuestion;
};
