// The events of the web server for the console. May be called on any thread.
#pragma once
#include "IUnknownEx.h"

class IKorviaWebServerSink : public IUnknownEx {
 public:
  /// For requests that the server cannot answer by itself; 0 when there is no handler.
  virtual int onWebRequest() = 0;

 protected:
  ~IKorviaWebServerSink() = default;
};
