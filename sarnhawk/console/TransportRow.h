// The transport row, which shows and controls the source on preview. Console thread.
#pragma once
#include <QString>

#include "console/ConsolePage.h"
#include "console/FocusKeeper.h"

class IKorviaSarnhawkPriv;
class IKorviaShowSource;

namespace Ui {
class KorviaSarnhawk;
}

class TransportRow : public ConsolePage {
 public:
  /// Both must outlive the row.
  TransportRow(IKorviaSarnhawkPriv* priv, Ui::KorviaSarnhawk& ui) : _priv(priv), _ui(ui) {}

  /// The source of the channel selected on PVM, null when there is none.
  IKorviaShowSource* source() const;
  /// Between the two calls the operator holds the seek slider, and a work tick does not move it.
  void holdSeek() { _seekHeld = true; }
  void releaseSeek() { _seekHeld = false; }
  /// Shows time, state and the buttons that fit the kind of source. Disables the row without a source.
  void onWorkTick() override;

  /// Translated name of a KorviaShowPlayState; empty for any other number.
  static QString stateName(int state);
  /// "hh:mm:ss" of tenths of a millisecond, as a time of day: it wraps at 24 hours.
  static QString timeText(qint64 tenthsOfMs);

 private:
  void setEnabled(bool enabled);
  void showButtons(int sourceKind);

  IKorviaSarnhawkPriv* _priv;
  Ui::KorviaSarnhawk& _ui;
  FocusKeeper _focus;
  bool _seekHeld = false;
};
