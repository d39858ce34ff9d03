#include "present/ItemCatalogue.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

/// The number of the exit with the same row of the table is greater by this.
constexpr qint32 kExitOffset = 26;
constexpr qint32 kMaskFirst = 17;

struct Animation {
  qint32 entrance;
  const char* entranceName;
  const char* exitName;
};

// The first two exits keep the names of the entrances, because their pictures have them.
constexpr Animation kAnimations[] = {
    {0, "Appear", "Appear"},
    {17, "Box", "Box"},
    {18, "Checkerboard", "Checkerboard"},
    {19, "Circle", "Circle"},
    {20, "DiagonalSquares", "DiagonalSquares"},
    {21, "Entrance_DissolveIn", "Exit_DissolveIn"},
    {1, "FlyInFromTop", "FlyInFromTop"},
    {2, "FlyInFromBottom", "FlyInFromBottom"},
    {3, "FlyInFromLeft", "FlyOutToLeft"},
    {4, "FlyInFromRight", "FlyOutToRight"},
    {5, "FlyInFromTopLeft", "FlyOutToTopLeft"},
    {6, "FlyInFromTopRight", "FlyOutToTopRight"},
    {22, "RandomBars", "RandomBars"},
    {23, "Split", "Split"},
    {24, "VenetianBlinds", "VenetianBlinds"},
    {25, "Wheel", "Wheel"},
    {7, "FloatFromTopLeft", "FloatFromTopLeft"},
    {8, "FloatFromTopRight", "FloatFromTopRight"},
    {9, "Glide", "Glide"},
    {10, "Magnify", "Magnify"},
    {11, "Pinwheel", "Pinwheel"},
    {12, "Sling", "Sling"},
    {13, "Thread", "Thread"},
    {14, "Zoom", "Zoom"},
    {15, "Ascend", "Ascend"},
    {16, "Descend", "Descend"},
};

/// The index is the preset.
constexpr const char* kTextPresets[] = {
    "default",
    "solid_white",
    "solid_black",
    "solid_red",
    "solid_green",
    "solid_blue",
    "solid_shadow_white",
    "solid_shadow_black",
    "solid_shadow_red",
    "solid_shadow_green",
    "solid_shadow_blue",
    "solid_outline_white",
    "solid_outline_black",
    "solid_outline_red",
    "solid_outline_green",
    "solid_outline_blue",
    "outline_white",
    "outline_black",
    "outline_red",
    "outline_green",
    "outline_blue",
    "gradient_white",
    "gradient_black",
    "gradient_red",
    "gradient_green",
    "gradient_blue",
    "gradient_yellow",
    "texture_0001",
    "texture_0002",
    "texture_0003",
    "texture_0004",
};

GListWidgetItemInfo animationTile(const char* name, const QString& folder, qint32 effect) {
  const QString text = QString::fromLatin1(name);
  return {text, QStringLiteral("%1%2.jpg").arg(folder, text), effect, QString(), QVariant()};
}

}  // namespace

QString ItemCatalogue::runningProgram() {
  return QFileInfo(QCoreApplication::applicationFilePath()).baseName();
}

ItemCatalogue::ItemCatalogue(const QString& program)
    : _folder(QStringLiteral("%1/ProductInfo-%2/res/").arg(QCoreApplication::applicationDirPath(), program)) {
}

QList<GListWidgetItemInfo> ItemCatalogue::entrances(Masks masks) const {
  QList<GListWidgetItemInfo> tiles;
  for (const Animation& animation : kAnimations) {
    if (masks == Masks::With || animation.entrance < kMaskFirst)
      tiles.append(animationTile(animation.entranceName, _folder + QStringLiteral("overlayAni/entrance/"),
                                 animation.entrance));
  }
  return tiles;
}

QList<GListWidgetItemInfo> ItemCatalogue::exits(Masks masks) const {
  QList<GListWidgetItemInfo> tiles;
  for (const Animation& animation : kAnimations) {
    if (masks == Masks::With || animation.entrance < kMaskFirst)
      tiles.append(animationTile(animation.exitName, _folder + QStringLiteral("overlayAni/exit/"),
                                 animation.entrance + kExitOffset));
  }
  return tiles;
}

QList<GListWidgetItemInfo> ItemCatalogue::textPresets() const {
  QList<GListWidgetItemInfo> tiles;
  for (const char* name : kTextPresets)
    tiles.append({QString(), QStringLiteral("%1subtitleStyle/%2.jpg").arg(_folder, QLatin1String(name)),
                  tiles.size(), QString(), QVariant()});
  return tiles;
}
