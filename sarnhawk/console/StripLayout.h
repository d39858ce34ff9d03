// The layout modes: how many strips of which kind stand on the desk. Plain data.
#pragma once

struct StripLayout {
  const char* text;  ///< as the system dialog shows it, untranslated
  int total;
  int media;
  int stage;

  /// The layout of a mode, null for a mode that does not exist.
  static const StripLayout* find(int mode);
};
