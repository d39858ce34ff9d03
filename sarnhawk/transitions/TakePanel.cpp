#include "transitions/TakePanel.h"

#include <QDateTime>
#include <QFileInfo>
#include <cstdlib>

#include "KorviaShowEvents.h"
#include "KorviaShowUtil.h"
#include "console/GWidgetDisplayObject.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/StripArea.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "ui_KorviaSarnhawk.h"

namespace {

constexpr int kRandomRange = 80;

}  // namespace

QToolButton* TakePanel::button(int index) const {
  QToolButton* const buttons[kButtonCount] = {
      _ui._takeTransitionToolButton_0, _ui._takeTransitionToolButton_1, _ui._takeTransitionToolButton_2,
      _ui._takeTransitionToolButton_3};
  return index >= 0 && index < kButtonCount ? buttons[index] : nullptr;
}

void TakePanel::update(int index) {
  QToolButton* shown = button(index);
  if (!shown)
    return;
  const qint32 effect = _priv->getConfig()->takeButtons[static_cast<std::size_t>(index)].effect;
  const GListWidgetItemInfo* item = _transitions.find(effect);
  // A number that no catalogue lists can be taken all the same, so the button shows the bare number.
  const QString text = item ? TransitionCatalogue::catalogName(static_cast<int>(
                                  KorviaShowUtil::getEffectCatalog(static_cast<unsigned>(effect)))) +
                                  QLatin1Char('\n') + item->name
                            : QString::number(effect);
  shown->setText(text);
  shown->setToolTip(text);
  shown->setIcon(item && QFileInfo::exists(item->thumbPath) ? QIcon(item->thumbPath) : QIcon());
}

QString TakePanel::transitionName(int index) const {
  const QToolButton* shown = button(index);
  return shown ? shown->text().replace(QLatin1Char('\n'), QLatin1Char(' ')) : QString();
}

void TakePanel::take(int channelId, int index) {
  if (!button(index))
    return;
  int channelIndex = 0;
  if (getObjectKind(channelId, channelIndex) == MediaObjectKind) {
    if (GWidgetDisplayObject* strip = _strips->media(channelIndex))
      strip->applyOnAirRule(channelId);
  }
  tagKorviaSarnhawkConfig* config = _priv->getConfig();
  const tagKorviaTakeButton& slot = config->takeButtons[static_cast<std::size_t>(index)];
  const qint32 effect = effectToSend(slot, QDateTime::currentSecsSinceEpoch());
  config->lastTakeIndex = index;
  _priv->postEvent(ShowEventTake, channelId, effect, slot.duration, slot.easing);
}

qint32 TakePanel::effectToSend(const tagKorviaTakeButton& slot, qint64 secondsSinceEpoch) {
  if (slot.effect != tagKorviaTakeButton::kRandomEffect)
    return slot.effect;
  std::srand(static_cast<unsigned>(secondsSinceEpoch));
  return std::rand() % kRandomRange;
}
