// Loads the spectrum widget at run time. Console thread only.
#pragma once
#include "CTempldateHelper.h"
#include "IGWidgetAudioSpectrum.h"

class CGWidgetAudioSpectrumHelper : public CTempldateHelper<IGWidgetAudioSpectrum> {
 public:
  CGWidgetAudioSpectrumHelper() {
    _moduleName = L"GAudioVisualModule.dll";
    _entryName = "CreateGWidgetAudioSpectrum";
    _identifier = &kIGWidgetAudioSpectrumId;
  }
};
