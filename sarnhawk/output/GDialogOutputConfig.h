// "Output Config": the settings of everything that leaves the engine. It edits a copy; the caller takes the
// copy over when the dialog is accepted. Shown without a parent and modal for itself alone, so that the desk
// stays usable. Console thread.
#pragma once
#include <QDialog>
#include <memory>

#include "tagKorviaShowOutputParam.h"

class GTabOutputPGM;
class IKorviaSarnhawkPriv;

namespace Ui {
class GDialogOutputConfig;
}

class GDialogOutputConfig : public QDialog {
  Q_OBJECT

 public:
  /// `priv` must outlive the dialog. The sizes of stream and recording are stored in its record at OK.
  explicit GDialogOutputConfig(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr);
  ~GDialogOutputConfig() override;

  /// The copy; the operator's settings once the dialog is accepted.
  const tagKorviaShowOutputParam& param() const { return _param; }

 public slots:
  void onClicked_okPushButton();
  void onClicked_cancelPushButton();

 private:
  std::unique_ptr<Ui::GDialogOutputConfig> _ui;
  tagKorviaShowOutputParam _param;
  GTabOutputPGM* _tab;
};
