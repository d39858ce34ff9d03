#include "console/LevelMeters.h"

#include <QVBoxLayout>

#include "KorviaShowEngine.h"
#include "audio/QVUMeter.h"
#include "console/GWidgetDisplayObject.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/StripArea.h"
#include "tagKorviaShowAudioLevel.h"
#include "ui_KorviaSarnhawk.h"

namespace {

QVUMeter* addMeter(QFrame* frame) {
  auto* meter = new QVUMeter(frame, false);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(meter);
  return meter;
}

}  // namespace

LevelMeters::LevelMeters(IKorviaSarnhawkPriv* priv, const StripArea* strips, const Ui::KorviaSarnhawk& ui)
    : _priv(priv),
      _strips(strips),
      _pvmMeter(addMeter(ui._pvmAUMeterFrame)),
      _pgmMeter(addMeter(ui._pgmAUMeterFrame)) {}

void LevelMeters::onFrameTick() {
  KorviaShowEngine* engine = _priv->getEngine();
  if (!engine)
    return;
  const tagKorviaShowAudioLevel& levels = engine->getAudioLevel();
  _pvmMeter->setValues(levels.pvm().left, levels.pvm().right);
  _pgmMeter->setValues(levels.pgm().left, levels.pgm().right);
  for (GWidgetDisplayObject* strip : _strips->strips())
    strip->updateLevels(levels);
}
