#include "services/IncomeNames.h"

#include "PublishRules.h"
#include "console/tagKorviaSarnhawkConfig.h"

IncomeNames::~IncomeNames() {
  korvia::PublishRules::instance().setIncomePaths({});
}

void IncomeNames::handOver() {
  QStringList incomePaths;
  for (const tagKorviaShowChannelSlot& channel : _config->channels)
    incomePaths.append(channel.source.incomePath);
  if (incomePaths == _handedOver)
    return;
  _handedOver = incomePaths;
  korvia::PublishRules::instance().setIncomePaths(incomePaths);
}
