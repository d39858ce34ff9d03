// Opens the output dialog and carries out what the operator has accepted in it. Console thread.
#pragma once
#include <QPointer>

#include "console/ConsolePage.h"
#include "output/GDialogOutputConfig.h"

class IKorviaSarnhawkPriv;
class OutputSwitches;

class OutputSettings : public ConsolePage {
 public:
  /// Neither is owned; both must outlive the object.
  OutputSettings(IKorviaSarnhawkPriv* priv, OutputSwitches* switches) : _priv(priv), _switches(switches) {}
  ~OutputSettings() override;

  /// Opens the dialog, or raises the one that is open.
  void open();

  void onHideAll() override;
  void onDestroyUi() override;

 private:
  void takeOver();

  IKorviaSarnhawkPriv* _priv;
  OutputSwitches* _switches;
  QPointer<GDialogOutputConfig> _dialog;
};
