#include "console/GWidgetDisplayObjectConfig.h"

#include <QCloseEvent>

#include "KorviaShowObjectID.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/SourceText.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "ui_GWidgetDisplayObjectConfig.h"

GWidgetDisplayObjectConfig::GWidgetDisplayObjectConfig(IKorviaSarnhawkPriv* priv, QWidget* parent)
    : GToolWindow(parent), _ui(std::make_unique<Ui::GWidgetDisplayObjectConfig>()), _priv(priv) {
  _ui->setupUi(this);
}

GWidgetDisplayObjectConfig::~GWidgetDisplayObjectConfig() = default;

void GWidgetDisplayObjectConfig::showChannel(int objectId) {
  _objectId = objectId;
  int index = 0;
  const int kind = getObjectKind(objectId, index);
  if (kind == MediaObjectKind && index < kMediaChannelMax) {
    _ui->stackedWidget->setCurrentWidget(_ui->_mediaConfigPage);
    _ui->_mediaInfoLabel->setText(mediaText(index));
    setWindowTitle(tr("Media Config - %1").arg(index));
  } else if (kind == StageObjectKind && index < kStageChannelMax) {
    _ui->stackedWidget->setCurrentWidget(_ui->_stageConfigPage);
    _ui->_stageInfoLabel->setText(stageText(index));
    setWindowTitle(tr("Stage Config - %1").arg(index));
  }
}

void GWidgetDisplayObjectConfig::closeEvent(QCloseEvent* event) {
  event->ignore();
  hide();
}

QString GWidgetDisplayObjectConfig::mediaText(int index) const {
  const tagKorviaShowSourceInfo& source =
      _priv->getConfig()->channels[static_cast<std::size_t>(index)].source;
  const QString kind = SourceText::kindName(source.kind);
  if (kind.isEmpty())
    return tr("This channel shows nothing");
  const QString file = SourceText::fileName(source);
  return file.isEmpty() ? kind : kind + QStringLiteral(" - ") + file;
}

QString GWidgetDisplayObjectConfig::stageText(int index) const {
  const tagKorviaStageSlot& slot = _priv->getConfig()->stages[static_cast<std::size_t>(index)];
  return slot.inUse ? slot.info.name : tr("This channel shows nothing");
}
