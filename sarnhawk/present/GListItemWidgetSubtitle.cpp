#include "present/GListItemWidgetSubtitle.h"

#include <QMouseEvent>

#include "ui_GListItemWidgetSubtitle.h"

GListItemWidgetSubtitle::GListItemWidgetSubtitle(IKorviaSarnhawkPriv* priv,
                                                 IGListItemWidgetSubtitleEventSink* sink,
                                                 const tagKorviaSubtitleParam& param, QListWidgetItem* item)
    : ItemRowOf(priv, sink, param, item), _ui(std::make_unique<Ui::GListItemWidgetSubtitle>()) {
  _ui->setupUi(this);
  useButtons(_ui->_subtitlePVMVisiblePushButton, _ui->_subtitlePGMVisiblePushButton, _ui->_configPushButton);
  setParam(param);
}

GListItemWidgetSubtitle::~GListItemWidgetSubtitle() = default;

void GListItemWidgetSubtitle::showItem() {
  _ui->_textScrollText->setText(param().info.text);
}

void GListItemWidgetSubtitle::mousePressEvent(QMouseEvent* event) {
  ItemRowOf::mousePressEvent(event);
  event->ignore();
}
