// A source of a kind that nothing can decode: black, in the state Error with the reason. Console thread,
// except pullFrame: engine thread.
#pragma once
#include "PictureSource.h"

namespace korvia {

class NoDecoderSource final : public PictureSource {
 public:
  NoDecoderSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                  const tagKorviaFormatInfo& format);

 protected:
  QString description() const override;
};

}  // namespace korvia
