#include "console/StripArea.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "console/GWidgetDisplayObject.h"
#include "console/StripLayout.h"

namespace {

constexpr int kPanelStretch = 50;
constexpr int kPanelMargin = 2;
constexpr int kLeftSpacing = 2;
constexpr int kRightSpacing = 4;

QHBoxLayout* addPanel(QWidget* area, QHBoxLayout* areaLayout, int spacing) {
  auto* panel = new QWidget(area);
  auto* layout = new QHBoxLayout(panel);
  layout->setSpacing(spacing);
  layout->setContentsMargins(kPanelMargin, kPanelMargin, kPanelMargin, kPanelMargin);
  areaLayout->addWidget(panel, kPanelStretch);
  return layout;
}

}  // namespace

void StripArea::build(int layoutMode, QWidget* area) {
  const StripLayout* mode = StripLayout::find(layoutMode);
  if (!mode)
    return;
  auto* areaLayout = new QHBoxLayout(area);
  areaLayout->setContentsMargins(0, 0, 0, 0);
  QHBoxLayout* left = addPanel(area, areaLayout, kLeftSpacing);
  QHBoxLayout* right = addPanel(area, areaLayout, kRightSpacing);
  for (int n = 0; n < mode->total; ++n) {
    const bool isMedia = n < mode->media;
    const int index = isMedia ? n : n - mode->media;
    QHBoxLayout* panel = n < mode->total / 2 ? left : right;
    auto* holder = new QWidget(panel->parentWidget());
    auto* holderLayout = new QVBoxLayout(holder);
    holderLayout->setSpacing(0);
    holderLayout->setContentsMargins(0, 0, 0, 0);
    panel->addWidget(holder);
    (isMedia ? _mediaHolders : _stageHolders).append(holder);

    auto* strip =
        new GWidgetDisplayObject(_priv, _chooser, (isMedia ? MediaChannel : StageChannel) + index, holder);
    holderLayout->addWidget(strip);
    _strips.append(strip);
    _slots[static_cast<std::size_t>(isMedia ? index : kMediaChannelMax + index)] = strip;
  }
}

void StripArea::hideFloats() {
  for (GWidgetDisplayObject* strip : _strips)
    strip->hideFloat();
}

void StripArea::onHideAll() {
  hideFloats();
  for (GWidgetDisplayObject* strip : _strips)
    strip->closePicker();
}

void StripArea::onEngineOpened() {
  for (GWidgetDisplayObject* strip : _strips)
    strip->onEngineOpened();
}

void StripArea::onFrameTick() {
  for (GWidgetDisplayObject* strip : _strips)
    strip->onFrameTick();
}

void StripArea::onWorkTick() {
  for (GWidgetDisplayObject* strip : _strips)
    strip->onWorkTick();
}

void StripArea::onDestroyUi() {
  for (GWidgetDisplayObject*& strip : _slots) {
    if (!strip)
      continue;
    strip->parentWidget()->layout()->removeWidget(strip);
    delete strip;
    strip = nullptr;
  }
  _strips.clear();
  _mediaHolders.clear();
  _stageHolders.clear();
}

GWidgetDisplayObject* StripArea::media(int index) const {
  return index >= 0 && index < kMediaChannelMax ? _slots[static_cast<std::size_t>(index)] : nullptr;
}

GWidgetDisplayObject* StripArea::stage(int index) const {
  return index >= 0 && index < kStageChannelMax
             ? _slots[std::size_t{kMediaChannelMax} + static_cast<std::size_t>(index)]
             : nullptr;
}
