// A picture file in any format that Qt reads; an animated GIF or WebP plays. It is loaded, and an animation
// decoded, on a thread of its own. Console thread, except pullFrame: engine thread.
#pragma once
#include "Animation.h"
#include "PictureSource.h"
#include "ThreadSafety.h"

namespace korvia {

class ImageSource final : public PictureSource {
 public:
  /// Opens `info.imagePath`; the state goes from Opening to Playing, or to Error with a line in the log. An
  /// animation goes on to Ended after its last pass.
  static std::shared_ptr<ImageSource> open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                           const tagKorviaFormatInfo& format);

  FrameRef pullFrame(int ticks) override;
  void close() override;
  SourceFigures figures() override;

  void getState(tagKorviaSourceLinkState& state) override;
  void play() override;
  void stop() override;
  void pause() override;
  void setHold(bool hold) override { animation_.setHold(hold); }
  void getDuration(qint64& duration) override;
  void getTime(qint64& time) override;
  void getFrameCount(qint64& frames) override;
  /// For the transport alone: an animation cannot be sought in.
  void getPosition(qint64& position) override;

 protected:
  QString description() const override;

 private:
  ImageSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format);
  void run();

  Animation animation_;
  std::atomic<bool> closing_{false};
  quint64 thread_ = 0;
  mutable Mutex sizeMutex_;
  FrameSize size_ GUARDED_BY(sizeMutex_);
};

}  // namespace korvia
