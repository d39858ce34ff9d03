// What the transport row shows of the source on preview. Console thread.
#pragma once
#include <QString>

class IKorviaShowSource;

namespace Ui {
class KorviaSarnhawk;
}

class TransportRow {
 public:
  /// `ui` must outlive the row.
  explicit TransportRow(Ui::KorviaSarnhawk& ui) : _ui(ui) {}

  /// Shows time, state and the buttons that make sense for the source; disables the row for null. The seek
  /// slider stays where it is while the operator holds it.
  void update(IKorviaShowSource* source, bool isSeekHeld);

  /// Translated name of a KorviaShowPlayState; empty for any other number.
  static QString stateName(int state);
  /// "hh:mm:ss" of tenths of a millisecond, as a time of day: it wraps at 24 hours.
  static QString timeText(qint64 tenthsOfMs);

 private:
  void showButtons(int sourceKind);

  Ui::KorviaSarnhawk& _ui;
};
