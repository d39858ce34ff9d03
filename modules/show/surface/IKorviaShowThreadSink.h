// The results of posted events. Called on the engine thread; implementations only pass the call on.
#pragma once
#include <QVariant>

#include "IUnknownEx.h"

class IKorviaShowThreadSink : public IUnknownEx {
 public:
  virtual void onPostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                                 QVariant a4) = 0;

 protected:
  ~IKorviaShowThreadSink() = default;
};
