// What the engine asks of and tells the console outside the event channel. Called on the engine thread or,
// for onSourceNotify, on a thread of the source.
#pragma once
#include <QImage>

#include "IUnknownEx.h"
#include "KorviaShowObjectID.h"

/// `what` of onSourceNotify: the film ended and asks for channel `param` (an object id) to be taken.
inline constexpr int kSourceNotifySwitch = 2;

class IKorviaShowEngineSink : public IUnknownEx {
 public:
  /// The sound of a media channel or of the karaoke, before its volume, in pieces of up to 2048 samples; a
  /// channel without sound is left out. `data`: 16-bit samples of the machine's byte order, left and right in
  /// turn, valid during the call. `a`: bytes. `b`: samples a second of one side. `c`: sides. `d`: null. `e`:
  /// bits of a sample.
  virtual void onAudioData(KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c,
                           const void* d, int e) = 0;
  virtual QImage lockBackground(KorviaShowObjectID id) = 0;
  virtual void unlockBackground(KorviaShowObjectID id, QImage& image) = 0;
  virtual void onSourceNotify(KorviaShowObjectID id, int what, int param) = 0;

 protected:
  ~IKorviaShowEngineSink() = default;
};
