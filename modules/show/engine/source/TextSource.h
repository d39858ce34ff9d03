// A text on a transparent picture. It is drawn on a thread of its own, in the size that the format of the
// source states, so that the sizes of font and outline are those of the console's preview, and then fitted
// into the render size. Console thread, except pullFrame: engine thread.
#pragma once
#include "PictureSource.h"

namespace korvia {

class TextSource final : public PictureSource {
 public:
  /// Draws `info.textParam`. Its text wins over the file `info.textPath`, because the operator may have
  /// changed it after the file was loaded; the file is read when the record has no text of its own. The state
  /// goes from Opening to Playing, or to Error with a line in the log.
  static std::shared_ptr<TextSource> open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                          const tagKorviaFormatInfo& format);

  void close() override;

 protected:
  QString description() const override;

 private:
  using PictureSource::PictureSource;
  void draw();

  quint64 thread_ = 0;
};

}  // namespace korvia
