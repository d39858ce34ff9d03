#include "AnimationSheet.h"

#include "AnimationPictures.h"
#include "MomentSheet.h"
#include "present/ItemCatalogue.h"

namespace korvia {

namespace {

constexpr QSize kPicture{112, 63};
constexpr int kBlocks = 2;

}  // namespace

QImage drawAnimationSheet() {
  std::vector<MomentRow> rows;
  AnimationPictures pictures(kPicture);
  const auto add = [&](const QList<GListWidgetItemInfo>& animations, const QString& kind) {
    for (const GListWidgetItemInfo& animation : animations)
      rows.push_back({animation.name, QStringLiteral("%1  %2").arg(animation.id).arg(kind),
                      [&pictures, effect = animation.id](double position) {
                        return pictures.picture(effect, position);
                      }});
  };
  // As many of each, so that each fills a block.
  add(ItemCatalogue().entrances(ItemCatalogue::Masks::Without), QStringLiteral("entrance"));
  add(ItemCatalogue().exits(ItemCatalogue::Masks::Without), QStringLiteral("exit"));
  return drawMomentSheet(rows, kBlocks, kPicture);
}

}  // namespace korvia
