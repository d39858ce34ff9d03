#include "NoDecoderSource.h"

#include "engine/EngineLog.h"

namespace korvia {

namespace {

struct Content {
  KorviaShowSourceKind kind;
  const char* name;
};

constexpr Content kContents[] = {
    {SourceKindKrmp, "krmp streams"},
    {SourceKindFlash, "flash films"},
    {SourceKindOffice, "office documents"},
};

QString contentOf(int kind) {
  for (const Content& content : kContents) {
    if (content.kind == kind)
      return QString::fromLatin1(content.name);
  }
  return QStringLiteral("kind %1").arg(kind);
}

}  // namespace

NoDecoderSource::NoDecoderSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                 const tagKorviaFormatInfo& format)
    : PictureSource(context, info, format, Opening) {
  const QString reason = QStringLiteral("no decoder for %1").arg(contentOf(info.kind));
  qCWarning(logSource, "source cannot be shown : %s", qUtf8Printable(reason));
  fail(reason);
}

QString NoDecoderSource::description() const {
  return contentOf(info().kind);
}

}  // namespace korvia
