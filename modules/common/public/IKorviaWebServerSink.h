// What the web server may tell the console. May be called on any thread.
#pragma once
#include "IUnknownEx.h"

class IKorviaWebServerSink : public IUnknownEx {
 public:
  /// Room for requests that the server cannot answer by itself; 0 when nobody handles them.
  virtual int onWebRequest() = 0;

 protected:
  ~IKorviaWebServerSink() = default;
};
