#include "present/ItemRow.h"

#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>

#include "console/IKorviaSarnhawkPriv.h"
#include "present/ItemKind.h"

namespace {

constexpr QSize kIconSize(14, 14);

void showVisibleButton(QPushButton* button, const QString& icon) {
  button->setCheckable(true);
  button->setIcon(QIcon(QStringLiteral(":/KorviaSarnhawk/Resources/images/%1").arg(icon)));
  button->setIconSize(kIconSize);
  button->setStyleSheet(QStringLiteral("QPushButton:checked{background-color: rgb(0, 85, 0);}"));
}

}  // namespace

ItemRow::ItemRow(const ItemKind& kind, IKorviaSarnhawkPriv* priv, QListWidgetItem* item)
    : _kind(kind), _priv(priv), _item(item) {}

void ItemRow::useButtons(QPushButton* pvmVisible, QPushButton* pgmVisible, QPushButton* config) {
  _pvmVisiblePushButton = pvmVisible;
  _pgmVisiblePushButton = pgmVisible;
  showVisibleButton(pvmVisible, QStringLiteral("pvm_visible.png"));
  showVisibleButton(pgmVisible, QStringLiteral("pgm_visible.png"));
  config->setIcon(QIcon(QStringLiteral(":/KorviaSarnhawk/Resources/images/config.png")));
  config->setIconSize(kIconSize);
  config->setToolTip(tr("Config"));
  connect(pvmVisible, &QPushButton::clicked, this,
          [this](bool checked) { setVisibleOn(PVMObject, checked); });
  connect(pgmVisible, &QPushButton::clicked, this,
          [this](bool checked) { setVisibleOn(PGMObject, checked); });
  connect(config, &QPushButton::clicked, this, [this, config] { tellConfig(config); });
}

void ItemRow::setSelected(bool selected) {
  if (selected == _selected)
    return;
  _selected = selected;
  setStyleSheet(selected ? QStringLiteral("#_mainFrame{border: 2px solid rgb(9, 124, 37);}") : QString());
}

void ItemRow::showVisible(bool onPvm, bool onPgm) {
  const QSignalBlocker pvmBlocker(_pvmVisiblePushButton);
  const QSignalBlocker pgmBlocker(_pgmVisiblePushButton);
  _pvmVisiblePushButton->setChecked(onPvm);
  _pgmVisiblePushButton->setChecked(onPgm);
}

void ItemRow::setVisibleOn(KorviaShowObjectID bus, bool visible) {
  storeVisible(bus, visible);
  if (visible)
    _priv->postEvent(_kind.showEvent, bus, engineRecord());
  else
    _priv->postEvent(_kind.hideEvent, bus, itemId());
  tellChanged();
}

void ItemRow::mousePressEvent(QMouseEvent*) {
  tellSelected();
}
