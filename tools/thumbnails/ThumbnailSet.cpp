#include "ThumbnailSet.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QLoggingCategory>
#include <QPainter>
#include <functional>
#include <memory>
#include <vector>

#include "AnimationPictures.h"
#include "EasingPicture.h"
#include "EffectPictures.h"
#include "PresetPictures.h"
#include "SampleScene.h"
#include "console/tagKorviaTakeButton.h"
#include "engine/mix/Easing.h"
#include "engine/mix/TransitionCatalog.h"
#include "present/ItemCatalogue.h"
#include "transitions/TransitionCatalogue.h"

Q_LOGGING_CATEGORY(lcThumbnails, "korvia.thumbnails")

namespace korvia {

namespace {

constexpr int kJpegQuality = 95;
constexpr double kPosition = 0.45;

struct Thumbnail {
  /// Path under which the console looks for the picture.
  QString path;
  std::function<QImage()> draw;
};
using Thumbnails = std::vector<Thumbnail>;

/// Several effects beside each other, as the picture of a random effect.
QImage drawMosaic(EffectPictures& effects) {
  constexpr int kRows = 2;
  constexpr int kColumns = 3;
  // First row: circle, checkerboard, wheel. Second row: swirl, pixelate, push.
  constexpr int kTiles[kRows][kColumns] = {{13, 12, 20}, {62, 55, 41}};
  QImage mosaic(effects.size(), QImage::Format_RGB32);
  QPainter painter(&mosaic);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const double width = static_cast<double>(mosaic.width()) / kColumns;
  const double height = static_cast<double>(mosaic.height()) / kRows;
  for (int row = 0; row < kRows; ++row)
    for (int column = 0; column < kColumns; ++column)
      painter.drawImage(QRectF(column * width, row * height, width, height),
                        effects.picture(kTiles[row][column], kPosition));
  return mosaic;
}

QImage drawEffect(EffectPictures& effects, qint32 effect) {
  if (effect == kEffectNone)
    return drawCut(effects.size());
  if (effect == tagKorviaTakeButton::kRandomEffect)
    return drawDie(drawMosaic(effects));
  return effects.picture(effect, kPosition);
}

void addEffects(Thumbnails& all) {
  const auto effects = std::make_shared<EffectPictures>(kEffectPictureSize);
  TransitionCatalogue catalogue;
  for (const GListWidgetItemInfo& item : *catalogue.effectList(TransitionCatalogue::kAllCatalog))
    all.push_back({item.thumbPath, [effects, effect = item.id] { return drawEffect(*effects, effect); }});
}

void addEasings(Thumbnails& all) {
  for (int code = 0; code < kEasingCount; ++code)
    all.push_back({TransitionCatalogue::easingThumbPath(code), [code] { return drawEasing(code); }});
}

void addTextPresets(Thumbnails& all) {
  const auto presets = std::make_shared<PresetPictures>();
  const QList<GListWidgetItemInfo> tiles = ItemCatalogue(kPicturedProgram).textPresets();
  for (const GListWidgetItemInfo& tile : tiles)
    all.push_back({tile.thumbPath, [presets, preset = tile.id] {
                     return presets->hasTextures() ? presets->tile(preset, kPresetPictureSize) : QImage();
                   }});
}

void addTextAnimations(Thumbnails& all) {
  const auto pictures = std::make_shared<AnimationPictures>(kAnimationPictureSize);
  const ItemCatalogue catalogue(kPicturedProgram);
  const auto masks = ItemCatalogue::Masks::Without;
  const QList<GListWidgetItemInfo> tiles = catalogue.entrances(masks) + catalogue.exits(masks);
  for (const GListWidgetItemInfo& tile : tiles)
    all.push_back({tile.thumbPath, [pictures, effect = tile.id] { return pictures->tile(effect); }});
}

/// Each function adds the pictures of one picker.
constexpr void (*kPickers[])(Thumbnails&) = {addEffects, addEasings, addTextPresets, addTextAnimations};

/// PNG is lossless and takes the quality as a degree of compression, so its default is used.
int qualityFor(const QString& path) {
  return path.endsWith(QLatin1String(".jpg")) ? kJpegQuality : -1;
}

bool write(const QImage& image, const QString& path) {
  if (image.isNull()) {
    qCWarning(lcThumbnails, "failed to draw : %s", qPrintable(path));
    return false;
  }
  if (!QFileInfo(path).dir().mkpath(QStringLiteral(".")) || !image.save(path, nullptr, qualityFor(path))) {
    qCWarning(lcThumbnails, "failed to write : %s", qPrintable(path));
    return false;
  }
  return true;
}

}  // namespace

bool writeThumbnails(const QString& programFolder) {
  Thumbnails all;
  for (const auto picker : kPickers)
    picker(all);
  const QDir application(QCoreApplication::applicationDirPath());
  const QDir target(programFolder);
  for (const Thumbnail& thumbnail : all)
    if (!write(thumbnail.draw(), target.filePath(application.relativeFilePath(thumbnail.path))))
      return false;
  return true;
}

}  // namespace korvia
