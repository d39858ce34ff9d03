#include "sources/GDialogMediaSourceOption.h"

#include "KorviaShowObjectID.h"
#include "sources/IGDialogMediaSourceOptionSink.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowSourceInfo.h"
#include "ui_GDialogMediaSourceOption.h"

GDialogMediaSourceOption::GDialogMediaSourceOption(const tagKorviaShowEngineInfo& engineInfo,
                                                   tagKorviaShowSourceInfo* info,
                                                   IGDialogMediaSourceOptionSink* sink, QWidget* parent)
    : QDialog(parent), _ui(std::make_unique<Ui::GDialogMediaSourceOption>()), _info(info), _sink(sink) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  _ui->_moviePlaybackModeComboBox->addItems({tr("Stop Play"), tr("Loop Play"), tr("Stop And Switch")});
  QComboBox* channels = _ui->_playbackEndSwitchChannelComboBox;
  for (int index = 0; index < engineInfo.mediaChannelCount; ++index)
    channels->addItem(tr("Media - %1").arg(index), MediaChannel + index);
  for (int index = 0; index < engineInfo.stageChannelCount; ++index)
    channels->addItem(tr("Stage - %1").arg(index), StageChannel + index);
  _ui->_moviePGMInOutActionComboBox->addItems({tr("None"), tr("Play"), tr("Pause/Resume")});
  _ui->_krmpHWDecodeCheckBox->addItems(decoders());

  _ui->_moviePlaybackModeComboBox->setCurrentIndex(_info->movieEndAction);
  const int channel = channels->findData(_info->movieSwitchChannel);
  if (channel >= 0)
    channels->setCurrentIndex(channel);
  _ui->_moviePGMInOutActionComboBox->setCurrentIndex(_info->moviePGMAction);
  _ui->_krmpHWDecodeCheckBox->setCurrentIndex(_info->krmpDecoder);

  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogMediaSourceOption::onClicked_okPushButton);
  connect(_ui->_cancelPushButton, &QPushButton::clicked, this,
          &GDialogMediaSourceOption::onClicked_cancelPushButton);
  connect(_ui->_clearHistoryPushButton, &QPushButton::clicked, this,
          &GDialogMediaSourceOption::onClicked_clearHistoryPushButton);
}

GDialogMediaSourceOption::~GDialogMediaSourceOption() = default;

QStringList GDialogMediaSourceOption::decoders() {
  return {QStringLiteral("Software"), QStringLiteral("CUDA"), QStringLiteral("QuickSync"),
          QStringLiteral("DXVA2CopyBack"), QStringLiteral("DXVA2Native")};
}

void GDialogMediaSourceOption::onClicked_okPushButton() {
  _info->movieEndAction = _ui->_moviePlaybackModeComboBox->currentIndex();
  _info->movieSwitchChannel = _ui->_playbackEndSwitchChannelComboBox->currentData().toInt();
  _info->moviePGMAction = _ui->_moviePGMInOutActionComboBox->currentIndex();
  _info->krmpDecoder = static_cast<quint8>(_ui->_krmpHWDecodeCheckBox->currentIndex());
  // A list takes over the action at the end, but keeps its own action on air.
  _info->listEndAction = _info->movieEndAction;
  _info->listSwitchChannel = _info->movieSwitchChannel;
  _info->incomeDecoder = _info->krmpDecoder;
  accept();
}

void GDialogMediaSourceOption::onClicked_cancelPushButton() {
  reject();
}

void GDialogMediaSourceOption::onClicked_clearHistoryPushButton() {
  _sink->onClicked_clearHistoryPushButton();
}
