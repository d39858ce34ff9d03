// A source of one colour or of 75 % colour bars. The picture is rendered once, when the source is opened.
// Console thread, except pullFrame: engine thread.
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
