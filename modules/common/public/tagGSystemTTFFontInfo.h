// The scalable fonts of this machine. Plain values, filled once at the start by ZRCUtil::enumSystemTTFFont on
// the console thread.
#pragma once
#include <QHash>
#include <QStringList>

struct tagGSystemTTFFontInfo {
  QStringList families;                // sorted, in the order that the font lists show
  QHash<QString, QStringList> styles;  // by family, for example "Regular", "Bold Italic"
};
