#include "SourceFactory.h"

#include "ColorSource.h"
#include "FilmSource.h"
#include "StillSource.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

using Maker = std::shared_ptr<Source> (*)(const SourceContext&, const tagKorviaShowSourceInfo&,
                                          const tagKorviaFormatInfo&);

template <typename Kind>
std::shared_ptr<Source> make(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                             const tagKorviaFormatInfo& format) {
  return std::make_shared<Kind>(context, info, format);
}

std::shared_ptr<Source> openStill(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                  const tagKorviaFormatInfo& format) {
  return StillSource::open(context, info, format);
}

struct KindEntry {
  KorviaShowSourceKind kind;
  Maker make;
};

constexpr KindEntry kKinds[] = {
    {SourceKindMovie, make<FilmSource>},
    {SourceKindMovieList, make<FilmSource>},
    {SourceKindImage, openStill},
    {SourceKindColor, make<ColorSource>},
};

}  // namespace

std::shared_ptr<Source> createSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                     const tagKorviaFormatInfo& format) {
  for (const KindEntry& entry : kKinds) {
    if (entry.kind == info.kind)
      return entry.make(context, info, format);
  }
  qCWarning(logSource, "no source of kind %d", info.kind);
  return nullptr;
}

}  // namespace korvia
