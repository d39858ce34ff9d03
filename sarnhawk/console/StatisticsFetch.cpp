#include "console/StatisticsFetch.h"

#include "KorviaShowEngine.h"
#include "console/IKorviaSarnhawkPriv.h"

void StatisticsFetch::onWorkTick() {
  KorviaShowEngine* engine = _priv->getEngine();
  if (!engine)
    return;
  _outputs = {};
  engine->getOutputState(&_outputs);
  engine->getSourceState(_sources.data());
  engine->getFigures(_figures);
}
