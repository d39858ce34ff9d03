// Picture files one after another, 5 s each while playing; after the last one the first follows. A file that
// cannot be read is skipped. Of an animation, the first picture. Console thread, except pullFrame: engine
// thread.
#pragma once
#include "PagedSource.h"

namespace korvia {

class ImageListSource final : public PagedSource {
 public:
  /// Opens `info.imageList`. The state goes from Opening to Playing, or to Error when no file can be read.
  static std::shared_ptr<ImageListSource> open(const SourceContext& context,
                                               const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format);

 protected:
  QString description() const override;
  int openItems(QString& reason) override;
  FrameRef loadItem(int index, QString& reason) override;

 private:
  ImageListSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                  const tagKorviaFormatInfo& format);

  const QStringList paths_;
};

}  // namespace korvia
