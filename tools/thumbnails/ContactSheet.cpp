#include "ContactSheet.h"

#include "EffectPictures.h"
#include "MomentSheet.h"
#include "engine/mix/TransitionCatalog.h"
#include "transitions/TransitionCatalogue.h"

namespace korvia {

namespace {

constexpr QSize kPicture{112, 63};
constexpr int kBlocks = 3;

}  // namespace

QImage drawContactSheet() {
  std::vector<MomentRow> rows;
  rows.reserve(kEffectCount);
  EffectPictures pictures(kPicture);
  TransitionCatalogue catalogue;
  for (int catalog = 0; catalog < TransitionCatalogue::kCatalogCount; ++catalog)
    for (const GListWidgetItemInfo& item : *catalogue.effectList(catalog))
      if (transitionFor(item.id))
        rows.push_back(
            {item.name, QStringLiteral("%1  %2").arg(item.id).arg(TransitionCatalogue::catalogName(catalog)),
             [&pictures, effect = item.id](double position) { return pictures.picture(effect, position); }});
  return drawMomentSheet(rows, kBlocks, kPicture);
}

}  // namespace korvia
