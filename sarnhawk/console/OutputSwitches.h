// Starts and stops what leaves the engine: the recording, the stream, and the outputs that are on or off as
// the record says. Console thread.
#pragma once
#include <QStringList>
#include <QVariant>

class IKorviaSarnhawkPriv;
class QPushButton;

namespace Ui {
class KorviaSarnhawk;
}

class OutputSwitches {
 public:
  /// Both must outlive the object.
  OutputSwitches(IKorviaSarnhawkPriv* priv, Ui::KorviaSarnhawk& ui) : _priv(priv), _ui(ui) {}

  /// `kind` is a KorviaShowOutputKind, here and below; other kinds than record and stream do nothing more
  /// than to keep the program name.
  void start(int kind);
  void stop(int kind);
  /// Posts on or off for virtual camera, NDI and SDI.
  void applyDirectOutputs();
  /// The engine answered: the button may be used again, whatever came of it.
  void onStarted(unsigned slot, const QVariant& outputParam);
  void onStopped(unsigned kind);

  // By KorviaShowOutputSlot.
  /// The operator has the output on.
  bool isOn(int slot) const;
  /// The engine has not answered to the last start or stop yet.
  bool isWaiting(int slot) const;
  /// The output is off by itself: its button says so and can be used.
  void springBack(int slot);
  /// Names of what the stream goes to. Never addresses: they carry keys.
  QStringList streamTargets() const;

 private:
  void enableButton(unsigned kind);
  QPushButton* button(int slot) const;

  IKorviaSarnhawkPriv* _priv;
  Ui::KorviaSarnhawk& _ui;
};
