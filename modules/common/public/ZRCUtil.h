// Fonts for lyrics and titles. Console thread only: the font database needs a QGuiApplication.
#pragma once
#include "tagGSystemTTFFontInfo.h"

class ZRCUtil {
 public:
  /// Fills the record with the scalable fonts of this machine, except private ones.
  static void enumSystemTTFFont(tagGSystemTTFFontInfo& info);
};
