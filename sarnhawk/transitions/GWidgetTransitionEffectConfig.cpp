#include "transitions/GWidgetTransitionEffectConfig.h"

#include <QSignalBlocker>

#include "console/IKorviaSarnhawkPriv.h"
#include "console/ShowChange.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "present/GListWidgetItem.h"
#include "present/buildThumbList.h"
#include "ui_GWidgetTransitionEffectConfig.h"

namespace {

constexpr QSize kTileSize(100, 100);

}  // namespace

GWidgetTransitionEffectConfig::GWidgetTransitionEffectConfig(IKorviaSarnhawkPriv* priv, QWidget* parent)
    : GToolWindow(parent), _ui(std::make_unique<Ui::GWidgetTransitionEffectConfig>()), _priv(priv) {
  _ui->setupUi(this);
  _pages = {{
      {_ui->_sysKindPushButton, _ui->_sysKindPage, _ui->_sysKindListWidget, {}},
      {_ui->_eraseKindPushButton, _ui->_eraseKindPage, _ui->_eraseKindListWidget, {}},
      {_ui->_fadeKindPushButton, _ui->_fadeKindPage, _ui->_fadeKindListWidget, {}},
      {_ui->_glideKindPushButton, _ui->_glideKindPage, _ui->_glideKindListWidget, {}},
      {_ui->_stretchKindPushButton, _ui->_stretchKindPage, _ui->_stretchKindListWidget, {}},
      {_ui->_blurKindPushButton, _ui->_blurKindPage, _ui->_blurKindListWidget, {}},
      {_ui->_distortionKindPushButton, _ui->_distortionKindPage, _ui->_distortionKindListWidget, {}},
      {_ui->_colorKindPushButton, _ui->_colorKindPage, _ui->_colorKindListWidget, {}},
      {_ui->_easingTypePushButton, _ui->_easingTypePage, _ui->_easingTypeListWidget, {}},
  }};
  for (int catalog = 0; catalog < TransitionCatalogue::kCatalogCount; ++catalog)
    fillPage(_pages[static_cast<std::size_t>(catalog)], *_priv->getEffectList(catalog));
  fillPage(_pages[kEasingPage], TransitionCatalogue::easingList());
  _ui->_effectKindStackedWidget->setCurrentWidget(_ui->_sysKindPage);

  for (const Page& page : _pages)
    connect(page.button, &QPushButton::clicked, this,
            &GWidgetTransitionEffectConfig::onClicked_navTransitionEffectPage);
  connect(_ui->_durationDoubleSpinBox, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
          &GWidgetTransitionEffectConfig::onValueChanged_durationDoubleSpinBox);
}

GWidgetTransitionEffectConfig::~GWidgetTransitionEffectConfig() = default;

// Takes a copy, because the take buttons show the same entries without the numbers.
void GWidgetTransitionEffectConfig::fillPage(Page& page, QList<GListWidgetItemInfo> infos) {
  for (GListWidgetItemInfo& info : infos)
    info.name += QStringLiteral(" - %1").arg(info.id);
  page.tiles = buildThumbList(this, page.listWidget, infos, kTileSize, false);
}

tagKorviaTakeButton* GWidgetTransitionEffectConfig::slot() const {
  auto& takeButtons = _priv->getConfig()->takeButtons;
  const auto index = static_cast<std::size_t>(_transitionIndex);
  return index < takeButtons.size() ? &takeButtons[index] : nullptr;
}

void GWidgetTransitionEffectConfig::setTransition(int transitionIndex) {
  _transitionIndex = transitionIndex;
  setWindowTitle(tr("Transition Effect - [%1]").arg(transitionIndex));
  const tagKorviaTakeButton* loaded = slot();
  for (const Page& page : _pages) {
    for (GListWidgetItem* tile : page.tiles)
      tile->setSelected(loaded &&
                        tile->info().id == (isEasing(page.listWidget) ? loaded->easing : loaded->effect));
  }
  if (!loaded)
    return;
  const QSignalBlocker blocker(_ui->_durationDoubleSpinBox);
  _ui->_durationDoubleSpinBox->setValue(static_cast<double>(loaded->duration));
}

void GWidgetTransitionEffectConfig::onClicked_navTransitionEffectPage() {
  for (const Page& page : _pages) {
    if (page.button == sender())
      _ui->_effectKindStackedWidget->setCurrentWidget(page.page);
  }
}

void GWidgetTransitionEffectConfig::onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item,
                                                            qint32 id) {
  tagKorviaTakeButton* edited = slot();
  if (!edited)
    return;
  // Only the clicked list changes its marks. The other lists keep theirs until a slot is loaded.
  for (const Page& page : _pages) {
    if (page.listWidget != listWidget)
      continue;
    for (GListWidgetItem* tile : page.tiles)
      tile->setSelected(tile == item);
  }
  const bool easing = isEasing(listWidget);
  (easing ? edited->easing : edited->effect) = id;
  _priv->updateTakeButton(_transitionIndex);
  if (!easing && _ui->_takeEffectCheckBox->isChecked())
    _priv->takeSelected(_transitionIndex);
  _priv->saveChanges(ShowChangeSystem);
}

void GWidgetTransitionEffectConfig::onValueChanged_durationDoubleSpinBox(double value) {
  tagKorviaTakeButton* edited = slot();
  if (!edited)
    return;
  edited->duration = static_cast<float>(value);
  _priv->saveChanges(ShowChangeSystem);
}
