// The scalable fonts of this machine, filled once at the start by ZRCUtil::enumSystemTTFFont.
#pragma once
#include <QHash>
#include <QStringList>

struct tagGSystemTTFFontInfo {
  QStringList families;                // sorted, in the order that the font lists show
  QHash<QString, QStringList> styles;  // by family, for example "Regular", "Bold Italic"
};
