// Fonts for lyrics and titles. GUI thread only: the font database needs a QGuiApplication.
#pragma once
#include "tagGSystemTTFFontInfo.h"

class ZRCUtil {
 public:
  /// Replaces the content of the record by the scalable fonts of this machine, without private ones.
  static void enumSystemTTFFont(tagGSystemTTFFontInfo& info);
};
