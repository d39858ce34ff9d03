// Fetches the engine's counters of sources and outputs once per work tick, so that all pages show the same
// figures. Console thread.
#pragma once
#include <array>

#include "KorviaShowObjectID.h"
#include "console/ConsolePage.h"
#include "tagKorviaOutputStatistics.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowSourceStatisticsItem.h"

class IKorviaSarnhawkPriv;

class StatisticsFetch : public ConsolePage {
 public:
  using Sources = std::array<tagKorviaShowSourceStatisticsItem, kMediaChannelMax>;

  /// `priv` must outlive the object.
  explicit StatisticsFetch(IKorviaSarnhawkPriv* priv) : _priv(priv) {}

  /// Without an engine the figures stay as they are.
  void onWorkTick() override;

  const tagKorviaOutputStatistics& outputs() const { return _outputs; }
  const Sources& sources() const { return _sources; }
  const tagKorviaShowEngineFigures& figures() const { return _figures; }

 private:
  IKorviaSarnhawkPriv* _priv;
  tagKorviaOutputStatistics _outputs;
  Sources _sources;
  tagKorviaShowEngineFigures _figures;
};
