// The base of sources that show one picture at a time; play, pause and stop only change the state. Console
// thread, except pullFrame: engine thread, and showPicture, fail and end: any thread.
#pragma once
#include <atomic>

#include "Source.h"
#include "ThreadSafety.h"

namespace korvia {

class PictureSource : public Source {
 public:
  FrameRef pullFrame(int ticks) override;
  void close() override;
  SourceFigures figures() override;

  void getState(tagKorviaSourceLinkState& state) override;
  void play() override { change(Playing); }
  void stop() override { change(Stopped); }
  void pause() override { change(Paused); }
  void getFrameCount(qint64& frames) override { frames = shown_; }
  int getPlayState() override { return state_; }

 protected:
  PictureSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                const tagKorviaFormatInfo& format, KorviaShowPlayState state);

  virtual QString description() const = 0;
  /// Sets the picture. A source that was opening or had failed begins to play, or gets the state that was
  /// asked for meanwhile.
  void showPicture(FrameRef picture);
  /// No picture comes; `reason` is kept for getState(). A source that shows one already keeps it and its
  /// state.
  void fail(const QString& reason);
  /// The source has played to its end.
  void end();

 private:
  void change(KorviaShowPlayState state);

  std::atomic<KorviaShowPlayState> state_;
  std::atomic<qint64> shown_{0};
  Mutex pictureMutex_;
  FrameRef picture_ GUARDED_BY(pictureMutex_);
  QString failureReason_ GUARDED_BY(pictureMutex_);
  KorviaShowPlayState wanted_ GUARDED_BY(pictureMutex_) = Playing;
};

}  // namespace korvia
