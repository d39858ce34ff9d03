#include "output/OutputSettings.h"

#include "console/IKorviaSarnhawkPriv.h"
#include "console/OutputSwitches.h"
#include "console/ShowChange.h"
#include "console/tagKorviaSarnhawkConfig.h"

OutputSettings::~OutputSettings() {
  delete _dialog;
}

void OutputSettings::open() {
  if (!_dialog) {
    // Without a parent it blocks no window, and without a loop of its own it does not outlive the console.
    _dialog = new GDialogOutputConfig(_priv);
    _dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(_dialog, &QDialog::accepted, _dialog, [this] { takeOver(); });
    _dialog->open();
  }
  _dialog->raise();
  _dialog->activateWindow();
}

void OutputSettings::takeOver() {
  _priv->getConfig()->outputParam = _dialog->param();
  _priv->saveChanges(ShowChangeOutput);
  _switches->applyDirectOutputs();
}

void OutputSettings::onHideAll() {
  if (_dialog)
    _dialog->reject();
}

void OutputSettings::onDestroyUi() {
  delete _dialog;
}
