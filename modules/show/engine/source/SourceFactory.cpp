#include "SourceFactory.h"

#include "ColorSource.h"
#include "FilmSource.h"
#include "ImageListSource.h"
#include "ImageSource.h"
#include "NoDecoderSource.h"
#include "PdfSource.h"
#include "TextSource.h"
#include "capture/CaptureSource.h"
#include "delay/DelaySource.h"
#include "engine/EngineLog.h"
#include "live/DeviceSource.h"
#include "live/StreamSource.h"

namespace korvia {

namespace {

using Maker = std::shared_ptr<Source> (*)(const SourceContext&, const tagKorviaShowSourceInfo&,
                                          const tagKorviaFormatInfo&);

template <typename Kind>
std::shared_ptr<Source> make(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                             const tagKorviaFormatInfo& format) {
  return std::make_shared<Kind>(context, info, format);
}

/// For a kind whose thread owns the source while it loads.
template <typename Kind>
std::shared_ptr<Source> open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                             const tagKorviaFormatInfo& format) {
  return Kind::open(context, info, format);
}

struct KindEntry {
  KorviaShowSourceKind kind;
  Maker make;
};

// clang-format off
constexpr KindEntry kKinds[] = {
    {SourceKindMovie, make<FilmSource>},
    {SourceKindMovieList, make<FilmSource>},
    {SourceKindKrmp, make<NoDecoderSource>},
    {SourceKindImage, open<ImageSource>},
    {SourceKindImageList, open<ImageListSource>},
    {SourceKindColor, make<ColorSource>},
    {SourceKindFlash, make<NoDecoderSource>},
    {SourceKindOffice, make<NoDecoderSource>},
    {SourceKindPdf, open<PdfSource>},
    {SourceKindText, open<TextSource>},
    {SourceKindUrl, makeUrlSource},
    {SourceKindDevice, makeDeviceSource},
    {SourceKindDevice3D, makeCardSource},
    {SourceKindDelay, make<DelaySource>},
    {SourceKindWeb, makePageSource},
    {SourceKindWindow, makeWindowSource},
    {SourceKindScreen, makeScreenSource},
    {SourceKindIncome, makeIncomeSource},
};
// clang-format on

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
