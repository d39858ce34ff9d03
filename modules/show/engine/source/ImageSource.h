// A picture file in any format that Qt reads. It is loaded on a thread of its own. Console thread, except
// pullFrame: engine thread.
#pragma once
#include "PictureSource.h"
#include "ThreadSafety.h"

namespace korvia {

class ImageSource final : public PictureSource {
 public:
  /// Opens `info.imagePath`; the state goes from Opening to Playing, or to Error with a line in the log.
  static std::shared_ptr<ImageSource> open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                           const tagKorviaFormatInfo& format);

  void close() override;

 protected:
  QString description() const override;

 private:
  using PictureSource::PictureSource;
  void load();

  std::atomic<bool> closing_{false};
  quint64 thread_ = 0;
  mutable Mutex sizeMutex_;
  FrameSize size_ GUARDED_BY(sizeMutex_);
};

}  // namespace korvia
