// Publishes the state of the show on the status board, which the status page reads. Console thread.
#pragma once
#include <QJsonObject>

#include "console/ConsolePage.h"
#include "tagKorviaShowEngineFigures.h"

class IKorviaSarnhawkPriv;
class StatisticsFetch;
class StripArea;

class StatusPublisher : public ConsolePage {
 public:
  /// None is owned; all must outlive the publisher.
  StatusPublisher(IKorviaSarnhawkPriv* priv, const StripArea* strips, const StatisticsFetch* statistics)
      : _priv(priv), _strips(strips), _statistics(statistics) {}

  /// Replaces all sections. Without an engine they contain only what the record tells.
  void onWorkTick() override;

 private:
  QJsonObject buses(const tagKorviaShowEngineFigures& figures) const;
  QJsonObject channels(const tagKorviaShowEngineFigures& figures) const;
  QJsonObject mediaChannel(int index, const tagKorviaShowEngineFigures::LiveSource& live) const;

  IKorviaSarnhawkPriv* _priv;
  const StripArea* _strips;
  const StatisticsFetch* _statistics;
};
