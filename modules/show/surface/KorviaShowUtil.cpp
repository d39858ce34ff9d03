#include "KorviaShowUtil.h"

namespace {

struct EffectRange {
  unsigned first;
  unsigned last;
  KorviaShowEffectKindCatalog catalog;
};

// The numbers between two ranges are not used.
constexpr EffectRange kEffectRanges[] = {
    {1, 20, EffectCatalogErase},    {22, 23, EffectCatalogFade}, {25, 44, EffectCatalogGlide},
    {46, 51, EffectCatalogStretch}, {53, 60, EffectCatalogBlur}, {62, 72, EffectCatalogDistortion},
    {74, 79, EffectCatalogColor},
};

}  // namespace

QString KorviaShowUtil::toPathString(KorviaShowObjectID id) {
  const auto isIn = [id](int first, int count) { return id >= first && id < first + count; };
  if (isIn(SourceObject, kMediaChannelMax))
    return QStringLiteral("media_%1").arg(id - SourceObject);
  if (isIn(MediaChannel, kMediaChannelMax))
    return QStringLiteral("media_%1").arg(id - MediaChannel);
  if (isIn(StageChannel, kStageChannelMax))
    return QStringLiteral("stage_%1").arg(id - StageChannel);
  switch (static_cast<int>(id)) {
    case KaraokeObject:
      return QStringLiteral("karaoke");
    case PVMObject:
      return QStringLiteral("pvm");
    case PGMObject:
      return QStringLiteral("pgm");
    default:
      return {};
  }
}

KorviaShowEffectKindCatalog KorviaShowUtil::getEffectCatalog(unsigned effect) {
  for (const EffectRange& range : kEffectRanges)
    if (effect >= range.first && effect <= range.last)
      return range.catalog;
  return EffectCatalogSys;
}
