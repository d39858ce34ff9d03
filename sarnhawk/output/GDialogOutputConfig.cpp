#include "output/GDialogOutputConfig.h"

#include "console/IKorviaSarnhawkPriv.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "output/GTabOutputPGM.h"
#include "ui_GDialogOutputConfig.h"

GDialogOutputConfig::GDialogOutputConfig(IKorviaSarnhawkPriv* priv, QWidget* parent)
    : QDialog(parent),
      _ui(std::make_unique<Ui::GDialogOutputConfig>()),
      _param(priv->getConfig()->outputParam),
      _tab(new GTabOutputPGM(priv, &_param, this)) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  _ui->_outputTabWidget->addTab(_tab, tr("Output - PGM"));
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogOutputConfig::onClicked_okPushButton);
  connect(_ui->_cancelPushButton, &QPushButton::clicked, this,
          &GDialogOutputConfig::onClicked_cancelPushButton);
}

GDialogOutputConfig::~GDialogOutputConfig() = default;

void GDialogOutputConfig::onClicked_okPushButton() {
  _tab->save();
  accept();
}

void GDialogOutputConfig::onClicked_cancelPushButton() {
  reject();
}
