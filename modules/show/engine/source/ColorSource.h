// A source of one colour, which may be transparent, or of EBU colour bars 100/0/75/0. The picture is rendered
// once, when the source is opened. Console thread, except pullFrame: engine thread.
#pragma once
#include "PictureSource.h"

namespace korvia {

class ColorSource final : public PictureSource {
 public:
  ColorSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format);

 protected:
  QString description() const override;
};

}  // namespace korvia
