// A source of one colour, which may be transparent, or of EBU colour bars 100/0/75/0 with a tone of 1 kHz at
// -18 dBFS, the alignment level of EBU R 68. The picture is rendered once, when the source is opened. Console
// thread, except pullFrame and pullSound: engine thread.
#pragma once
#include "PictureSource.h"

namespace korvia {

class ColorSource final : public PictureSource {
 public:
  ColorSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format);

  bool pullSound(StereoSpan out) override;

 protected:
  QString description() const override;

 private:
  int toneSample_ = 0;  // engine thread; within a period of the tone
};

}  // namespace korvia
