#include "services/PaintPad.h"

#include <QSignalBlocker>

#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "console/GWidgetDisplayObject.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/ShowChange.h"
#include "console/StripArea.h"
#include "ui_KorviaSarnhawk.h"

namespace {

const QSize kSize(1280, 720);
constexpr int kChannels = 8;
constexpr int kMediaChannels = 4;
constexpr int kUndoDepth = 100;

}  // namespace

void PaintPad::create(IGWhitePadSink* sink, const QString& title) {
  qDebug("create painter window ...");
  _pad.create(sink, title, kChannels, nullptr, kUndoDepth);
  _pad.start(kSize);
  // The pad has no drawing surface to show yet.
  _ui._paintOutputPushButton->setEnabled(false);
}

void PaintPad::followButton() {
  _pad.setVisible(_ui._paintOutputPushButton->isChecked(), false);
}

void PaintPad::onCommitWhitePadImage(const QImage& image) {
  if (KorviaShowEngine* engine = _priv->getEngine())
    engine->commitPaintPadImage(image);
}

void PaintPad::onSetWhitePadValid(bool valid) {
  if (KorviaShowEngine* engine = _priv->getEngine()) {
    engine->setPaintPadValid(valid);
    if (!valid)
      engine->pausePGMImage(false);
  }
  const QSignalBlocker blocker(_ui._paintOutputPushButton);
  _ui._paintOutputPushButton->setChecked(valid);
}

void PaintPad::onPauseWhitePad(bool pause) {
  if (KorviaShowEngine* engine = _priv->getEngine())
    engine->pausePGMImage(pause);
}

void PaintPad::onSelectWhitePadChannel(int index) {
  const int channelId = index < kMediaChannels ? MediaChannel + index : StageChannel + index - kMediaChannels;
  for (GWidgetDisplayObject* strip : _strips->strips())
    strip->applyOnAirRule(channelId);
  _priv->postEvent(ShowEventSelectChannel, PVMObject, channelId);
  _priv->saveChanges(ShowChangeMediaChannel | ShowChangeStageChannel);
}
