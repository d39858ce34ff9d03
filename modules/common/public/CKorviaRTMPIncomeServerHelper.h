// Loads the income server at run time. Console thread only.
#pragma once
#include "CTempldateHelper.h"
#include "IKorviaRTMPIncomeServer.h"

class CKorviaRTMPIncomeServerHelper : public CTempldateHelper<IKorviaRTMPIncomeServer> {
 public:
  CKorviaRTMPIncomeServerHelper() {
    _moduleName = L"KorviaCommonModule.dll";
    _entryName = "CreateKorviaRTMPIncomeServer";
    _identifier = &kIKorviaRTMPIncomeServerId;
  }
};
