// The preview and the program bus, and the take on program. Reports the changes by takes and by the lever to
// the console. Engine thread.
#pragma once
#include <memory>

#include "backend/IShowBackend.h"
#include "engine/ShowFormat.h"
#include "engine/bus/Bus.h"
#include "engine/bus/BusChannels.h"
#include "engine/channel/ChannelStage.h"
#include "engine/mix/ProgramSwitch.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

class Switcher {
 public:
  /// `channels` must outlive the switcher.
  explicit Switcher(ChannelPictures& channels) : channels_(channels) {}

  /// Results go to `host` from here on; null ends that.
  void setHost(IShowBackendHost* host) { host_ = host; }
  void open(const ShowFormat& format);

  // Events.
  void take(int channel, int effect, double seconds, int easing);
  void moveLever(int bus, float position);
  void selectChannel(int bus, int channel);

  /// Steps a running take by `frames` and reports its position.
  void step(int frames);
  /// The program picture without its layers: a channel, or the transition between two. Its alpha, if any,
  /// means nothing: a bus lies on black, and colours are premultiplied.
  FrameRef programPicture();
  FrameRef previewPicture();

  Bus& pvm() { return pvm_; }
  Bus& pgm() { return pgm_; }
  double position() const { return switch_.position(); }
  BusChannels channels() const;

 private:
  void report();
  void reportDoneTake();

  ChannelPictures& channels_;
  IShowBackendHost* host_ = nullptr;
  FrameRate rate_;
  Bus pvm_;
  Bus pgm_;
  ProgramSwitch switch_;
  TransitionScratch scratch_;
  std::unique_ptr<FramePool> pool_;
};

}  // namespace korvia
