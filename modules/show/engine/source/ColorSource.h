// One colour, or 75 % colour bars. Rendered once, when it is opened. Console thread, except pullFrame.
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
