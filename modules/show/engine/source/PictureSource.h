// What sources with one unmoving picture have in common: buttons that only change the state, no length, one
// item. Console thread, except pullFrame: engine thread, and showPicture and fail: any.
#pragma once
#include <atomic>
#include <mutex>

#include "Source.h"

namespace korvia {

class PictureSource : public Source {
 public:
  FrameRef pullFrame(int ticks) override;
  void close() override;
  SourceFigures figures() override;

  KorviaShowObjectID getObjectId() override { return context_.id; }
  int* getSourceInfo() override { return &info_.kind; }
  const tagKorviaFormatInfo* getFormat() override { return &format_; }
  void getState(tagKorviaSourceLinkState& state) override;
  void play() override { change(Playing); }
  void stop() override { change(Stopped); }
  void pause() override { change(Paused); }
  void setHold(bool) override {}
  void prev() override {}
  void next() override {}
  void getDuration(qint64& duration) override { duration = 0; }
  void getTime(qint64& time) override { time = 0; }
  void getFrameCount(qint64& frames) override { frames = shown_; }
  void getPosition(qint64& position) override { position = 0; }
  void setPosition(qint64) override {}
  int getPlayState() override { return state_; }
  int getItemCount() override { return 1; }
  int getItemIndex() override { return 0; }

 protected:
  PictureSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                const tagKorviaFormatInfo& format, KorviaShowPlayState state);

  const SourceContext& context() const { return context_; }
  const tagKorviaShowSourceInfo& info() const { return info_; }
  virtual QString description() const = 0;
  /// The picture is there; a source that was opening plays.
  void showPicture(FrameRef picture);
  /// The picture will not come; `reason` is kept for getState().
  void fail(const QString& reason);

 private:
  void change(KorviaShowPlayState state);

  const SourceContext context_;
  tagKorviaShowSourceInfo info_;
  const tagKorviaFormatInfo format_;
  std::atomic<KorviaShowPlayState> state_;
  std::atomic<qint64> shown_{0};
  std::mutex pictureMutex_;
  FrameRef picture_;                      // guarded by pictureMutex_
  QString failureReason_;                 // guarded by pictureMutex_
  KorviaShowPlayState wanted_ = Playing;  // guarded by pictureMutex_
};

}  // namespace korvia
