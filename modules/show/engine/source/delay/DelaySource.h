// Another channel's picture and sound, later. A short delay is kept in memory; a long one in a file in the
// folder of the record. When the other channel is closed the delay plays out what it has. Pause, stop and
// hold keep the picture on show; meanwhile what comes is stored, and play goes on with the full delay. The
// sound is in memory and goes on also when the pictures cannot be stored. Console thread, except the picture,
// the sound and the tap: engine thread.
#pragma once
#include <atomic>
#include <memory>

#include "DelayPlan.h"
#include "PictureDelay.h"
#include "SoundDelay.h"
#include "engine/audio/GainRamp.h"
#include "engine/source/Source.h"

namespace korvia {

class DelaySource final : public Source, private SourceTap {
 public:
  DelaySource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format)
      : DelaySource(context, info, format, DelayLimits()) {}
  DelaySource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format, const DelayLimits& limits);
  ~DelaySource() override;

  FrameRef pullFrame(int ticks) override;
  bool pullSound(StereoSpan out) override;
  SourceTap* tap() override;
  void close() override;
  SourceFigures figures() override;

  void getState(tagKorviaSourceLinkState& state) override;
  void play() override { state_ = Playing; }
  void stop() override { state_ = Stopped; }
  void pause() override { state_ = Paused; }
  void setHold(bool hold) override { held_ = hold; }
  void getFrameCount(qint64& frames) override { frames = shown_; }
  int getPlayState() override;

  /// As it was planned; the frames are 0 for a channel that cannot be delayed.
  const DelayPlan& plan() const { return plan_; }
  /// Pictures that have come and are not stored yet. Any thread.
  int framesWaiting() const { return pictures_ ? pictures_->framesWaiting() : 0; }

 private:
  int tappedSlot() const override;
  void onTappedPicture(const FrameRef& picture, int ticks) override;
  void onTappedSound(StereoSpan piece) override { sound_->push(piece); }
  void onTappedSilence(int samples) override { sound_->pushSilence(samples); }

  bool runs() const { return state_ == Playing && !held_; }
  QString failure() const;
  void makePictures(const DelayLimits& limits);

  // Null both when the record names no channel.
  std::shared_ptr<PictureDelay> pictures_;
  std::unique_ptr<SoundDelay> sound_;
  DelayPlan plan_;
  std::atomic<KorviaShowPlayState> state_{Playing};
  std::atomic<bool> held_{false};
  std::atomic<qint64> shown_{0};
  std::atomic<qint64> stored_{0};
  FrameRef current_;                     // engine thread
  GainRamp gain_{GainRamp::Gain::Full};  // engine thread
  bool closed_ = false;                  // console thread
  quint64 thread_ = 0;                   // 0 for a delay in memory
};

}  // namespace korvia
