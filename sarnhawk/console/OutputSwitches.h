// Starts and stops the outputs of the engine: recording and stream by their buttons; virtual camera, NDI and
// SDI by their flags in the record. Console thread.
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

  /// `kind` is a KorviaShowOutputKind, here and below. Record and stream are started; any other kind only
  /// stores the program name.
  void start(int kind);
  void stop(int kind);
  /// Posts on or off for virtual camera, NDI and SDI.
  void applyDirectOutputs();
  /// The engine has answered. The button is enabled again, also when the output failed.
  void onStarted(unsigned slot, const QVariant& outputParam);
  void onStopped(unsigned kind);

  // By KorviaShowOutputSlot.
  /// Clicks the button, as the operator would, when it does not stand there already. Nothing happens while
  /// the button is disabled.
  enum class Press { On, Off };
  void press(int slot, Press press);
  /// The operator has switched the output on.
  bool isOn(int slot) const;
  /// The engine has not answered to the last start or stop yet.
  bool isWaiting(int slot) const;
  /// Shows the button as off and enables it, because the output has ended by itself.
  void springBack(int slot);
  /// Names of the targets of the stream, as on the pages of the output settings. Addresses are left out,
  /// because they contain stream keys.
  QStringList streamTargets() const;

 private:
  void enableButton(unsigned kind);
  QPushButton* button(int slot) const;

  IKorviaSarnhawkPriv* _priv;
  Ui::KorviaSarnhawk& _ui;
};
