// A source whose input cannot wait: pictures and sound are shown one target latency after their arrival. A
// lost input keeps its last picture on show and is opened again by itself, for as long as the source is open.
// Console thread, except pullFrame and pullSound: engine thread. No call waits for the input.
#pragma once
#include <memory>

#include "LiveInput.h"
#include "LiveTransport.h"
#include "engine/source/Source.h"
#include "engine/source/SourceThreads.h"

namespace korvia {

class LiveSource final : public Source {
 public:
  LiveSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
             const tagKorviaFormatInfo& format, const LiveSettings& settings, LiveInputMaker maker);
  ~LiveSource() override;

  FrameRef pullFrame(int ticks) override { return transport_->pull(ticks); }
  bool pullSound(StereoSpan out) override { return transport_->pullSound(out); }
  void close() override;
  SourceFigures figures() override;

  /// The rate is the nominal one while the input is being opened, so that the restart watchdog leaves it
  /// alone.
  void getState(tagKorviaSourceLinkState& state) override;
  /// Opens the input anew when it was stopped.
  void play() override { transport_->play(); }
  /// Closes the input; the last picture stays.
  void stop() override { transport_->stop(); }
  /// Keeps the picture, while the input goes on.
  void pause() override { transport_->pause(); }
  void setHold(bool hold) override { transport_->setHold(hold); }
  void getFrameCount(qint64& frames) override { frames = transport_->framesShown(); }
  int getPlayState() override;

 private:
  const QString description_;
  const std::shared_ptr<LiveTransport> transport_;
  quint64 thread_ = 0;
  bool closed_ = false;
};

}  // namespace korvia
