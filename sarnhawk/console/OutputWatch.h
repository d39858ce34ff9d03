// Watches recording and stream for the operator. When an output fails, its button is switched off and a
// notice tells why; a notice also tells of lost frames, and of single targets and devices that are lost or
// failed unless the operator has switched these warnings off. Console thread.
#pragma once
#include <QStringList>
#include <array>

#include "console/ConsolePage.h"
#include "tagKorviaShowOutputReport.h"

class GOutputNotice;
class OutputSwitches;
class StatisticsFetch;
struct tagKorviaSarnhawkConfig;

class OutputWatch : public ConsolePage {
 public:
  /// None is owned; all must outlive the watch.
  OutputWatch(const StatisticsFetch* statistics, OutputSwitches* switches, GOutputNotice* notice,
              const tagKorviaSarnhawkConfig* config);

  void onWorkTick() override;
  /// A new output begins in the slot. Forgets what was shown about the one before.
  void onStart(int slot);

  /// Lines that name the recording and the streams that run; empty when none does.
  QString runningText() const;

 private:
  static constexpr int kSlots = 2;

  /// In rising severity. A worse one is shown even after the operator has clicked a lesser one away.
  enum class News { None, FramesLost, TargetDown, Unreadable, Failed };
  struct Told {
    News news = News::None;
    News clickedAway = News::None;
    QString line;
    QString details;
    /// A report about the present start was seen; until then the newest one is about the output before.
    bool isReported = false;
    bool hasLostFrames = false;
    /// Names of the targets that are down, and of those among them that the operator has clicked away.
    QStringList down;
    QStringList downClickedAway;
    /// Why the recording is not whole, and what of that the operator has clicked away.
    QString warning;
    QString warningClickedAway;
  };

  void tell(int slot, const tagKorviaShowOutputReport& report);
  void tellDevices();
  static void tellDown(Told& told, const QList<tagKorviaShowTargetReport>& down, const QString& lost);
  QList<tagKorviaShowTargetReport> noteDown(Told& told,
                                            const QList<tagKorviaShowTargetReport>& targets) const;
  void showNotice();
  void clickAway();
  bool isRunning(int slot) const;

  const StatisticsFetch* _statistics;
  OutputSwitches* _switches;
  GOutputNotice* _notice;
  const tagKorviaSarnhawkConfig* _config;
  std::array<Told, kSlots> _told;
  Told _devices;
};
