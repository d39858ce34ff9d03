#include "AnimationSheet.h"

#include "AnimationPictures.h"
#include "MomentSheet.h"
#include "TextAnimations.h"

namespace korvia {

namespace {

constexpr QSize kPicture{112, 63};
constexpr int kBlocks = 2;
// As many of each, so that each fills a block.
static_assert(kTextEntrances.size() == kTextExits.size());

}  // namespace

QImage drawAnimationSheet() {
  std::vector<MomentRow> rows;
  rows.reserve(kTextEntrances.size() + kTextExits.size());
  AnimationPictures pictures(kPicture);
  const auto add = [&](const TextAnimation& animation, const QString& kind) {
    rows.push_back({QLatin1String(animation.name), QStringLiteral("%1  %2").arg(animation.effect).arg(kind),
                    [&pictures, effect = animation.effect](double position) {
                      return pictures.picture(effect, position);
                    }});
  };
  for (const TextAnimation& entrance : kTextEntrances)
    add(entrance, QStringLiteral("entrance"));
  for (const TextAnimation& exit : kTextExits)
    add(exit, QStringLiteral("exit"));
  return drawMomentSheet(rows, kBlocks, kPicture);
}

}  // namespace korvia
