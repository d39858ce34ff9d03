// Loads the web server at run time. Console thread only.
#pragma once
#include "CTempldateHelper.h"
#include "IKorviaWebServer.h"

class CKorviaWebServerHelper : public CTempldateHelper<IKorviaWebServer> {
 public:
  CKorviaWebServerHelper() {
    _moduleName = L"KorviaCommonModule.dll";
    _entryName = "CreateKorviaWebServer";
    _identifier = &kIKorviaWebServerId;
  }
};
