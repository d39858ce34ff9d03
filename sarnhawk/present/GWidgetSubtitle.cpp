#include "present/GWidgetSubtitle.h"

#include "ui_GWidgetSubtitle.h"

namespace {

constexpr int kRowHeight = 46;
constexpr qint64 kAnimationMs = 600;

}  // namespace

GWidgetSubtitle::GWidgetSubtitle(IKorviaSarnhawkPriv* priv, QWidget* parent)
    : ItemTabOf(priv, parent), _ui(std::make_unique<Ui::GWidgetSubtitle>()) {
  _ui->setupUi(this);
  useList(_ui->_subtitleListWidget);
  connect(_ui->_addPushButton, &QPushButton::clicked, this, &GWidgetSubtitle::onClicked_addPushButton);
  connect(_ui->_delPushButton, &QPushButton::clicked, this, &GWidgetSubtitle::onClicked_delPushButton);
}

GWidgetSubtitle::~GWidgetSubtitle() = default;

void GWidgetSubtitle::fitRow(GListItemWidgetSubtitle* row) {
  // A hint of width 0 leaves the row as wide as the list.
  const QSize size(0, kRowHeight);
  row->listWidgetItem()->setSizeHint(size);
  row->setSizeIncrement(size);
}

void GWidgetSubtitle::onClicked_addPushButton() {
  tagKorviaSubtitleParam param;
  param.info.enter.duration = kAnimationMs;
  param.info.exit.duration = kAnimationMs;
  addItem(param);
}

void GWidgetSubtitle::onClicked_delPushButton() {
  QList<GListItemWidgetSubtitle*> targets;
  const QList<QListWidgetItem*> selected = _ui->_subtitleListWidget->selectedItems();
  for (const QListWidgetItem* item : selected)
    targets.append(findRow(item));
  removeItems(targets);
}
