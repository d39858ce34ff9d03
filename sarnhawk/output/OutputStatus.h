// The state of recording and stream in labels beside their buttons, read once a second from the engine's
// reports. A label is hidden while its output does not run. Console thread.
#pragma once
#include "console/ConsolePage.h"

class OutputSwitches;
class QLabel;
class QString;
class StatisticsFetch;
struct tagKorviaShowOutputReport;

namespace Ui {
class KorviaSarnhawk;
}

class OutputStatus : public ConsolePage {
 public:
  /// None is owned; all must outlive the object. Hides both labels.
  OutputStatus(const StatisticsFetch* statistics, const OutputSwitches* switches, Ui::KorviaSarnhawk& ui);

  void onWorkTick() override;

  /// "00:12:30   1.2 GB", and in a second line what is known of room and verification.
  static QString recordText(const tagKorviaShowOutputReport& report);
  /// The targets in one line, the worst one first; a single one without its name.
  static QString streamText(const tagKorviaShowOutputReport& report);
  /// The targets with reasons and bitrates, a line for each.
  static QString streamDetails(const tagKorviaShowOutputReport& report);

 private:
  void showRecord(const tagKorviaShowOutputReport& report);
  void showStream(const tagKorviaShowOutputReport& report);

  const StatisticsFetch* _statistics;
  const OutputSwitches* _switches;
  QLabel* _recordLabel;
  QLabel* _streamLabel;
};
