// Watches what becomes of recording and stream, and tells the operator: an output that failed lets its button
// spring back and leaves a notice, and so do frames that are lost. Console thread.
#pragma once
#include <QString>
#include <array>

#include "console/ConsolePage.h"
#include "tagKorviaShowOutputReport.h"

class GOutputNotice;
class OutputSwitches;
class StatisticsFetch;

class OutputWatch : public ConsolePage {
 public:
  /// None is owned; all must outlive the watch.
  OutputWatch(const StatisticsFetch* statistics, OutputSwitches* switches, GOutputNotice* notice);

  void onWorkTick() override;
  /// A new output begins in the slot: what was told of the one before is over.
  void onStart(int slot);

  /// Lines that name the recording and the streams that run; empty when none does.
  QString runningText() const;

 private:
  static constexpr int kSlots = 2;

  /// In the order of weight: what weighs more is told although the operator has clicked the lighter away.
  enum class News { None, FramesLost, Failed };
  struct Told {
    News news = News::None;
    News clickedAway = News::None;
    QString line;
    QString details;
    /// A report about the present start was seen; until then the newest one is about the output before.
    bool isReported = false;
  };

  void tell(int slot, const tagKorviaShowOutputReport& report);
  void showNotice();
  void clickAway();
  bool isRunning(int slot) const;

  const StatisticsFetch* _statistics;
  OutputSwitches* _switches;
  GOutputNotice* _notice;
  std::array<Told, kSlots> _told;
};
