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
  virtual void onAudioData(KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c,
                           const void* d, int e) = 0;
  virtual QImage lockBackground(KorviaShowObjectID id) = 0;
  virtual void unlockBackground(KorviaShowObjectID id, QImage& image) = 0;
  virtual void onSourceNotify(KorviaShowObjectID id, int what, int param) = 0;

 protected:
  ~IKorviaShowEngineSink() = default;
};
