// What the web server may tell the console. May be called on any thread.
#pragma once
#include "IUnknownEx.h"

class IKorviaWebServerSink : public IUnknownEx {
 public:
  /// A request that the server does not answer itself; 0 when nobody handles it.
  virtual int onWebRequest() = 0;
};
