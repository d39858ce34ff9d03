// Hands the names under which the channels take pushed streams over to the income server: when the engine has
// opened, when the records change and on the work tick. Console thread.
#pragma once
#include <QStringList>

#include "console/ConsolePage.h"

struct tagKorviaSarnhawkConfig;

class IncomeNames : public ConsolePage {
 public:
  /// The record is not owned and must outlive the page.
  explicit IncomeNames(const tagKorviaSarnhawkConfig* config) : _config(config) {}
  /// Nothing may be pushed any more.
  ~IncomeNames() override;

  void onEngineOpened() override { handOver(); }
  void onWorkTick() override { handOver(); }
  /// Does nothing when no name has changed.
  void handOver();

 private:
  const tagKorviaSarnhawkConfig* _config;
  QStringList _handedOver;
};
