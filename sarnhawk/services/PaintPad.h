// The console's paint pad: shows it by the paint button, and does what the pad reports to the console.
// Console thread, except lockBackground and unlockBackground, which the engine thread calls.
#pragma once
#include "GWhitePadObject.h"
#include "IGWhitePadSink.h"
#include "console/ConsolePage.h"

class IKorviaSarnhawkPriv;
class StripArea;

namespace Ui {
class KorviaSarnhawk;
}

class PaintPad : public ConsolePage, public IGWhitePadSink {
 public:
  /// None is owned; all must outlive the object.
  PaintPad(IKorviaSarnhawkPriv* priv, const StripArea* strips, Ui::KorviaSarnhawk& ui)
      : _priv(priv), _strips(strips), _ui(ui) {}

  /// Makes and starts the pad, hidden. `sink` hears its reports and passes them on to this object.
  void create(IGWhitePadSink* sink, const QString& title);
  /// Shows the pad while the paint button is checked and hides it otherwise.
  void followButton();

  /// The picture that the engine is to fill with the program; null when the pad wants none.
  QImage lockBackground() { return _pad.lockBackground(); }
  void unlockBackground(const QImage& image) { _pad.unlockBackground(image); }

  void onFrameTick() override { _pad.updateBackground(); }
  void onHideAll() override { _pad.setVisible(false, false); }
  void onDestroyUi() override { _pad.destory(); }

  void onCommitWhitePadImage(const QImage& image) override;
  void onSetWhitePadValid(bool valid) override;
  void onPauseWhitePad(bool pause) override;
  void onSelectWhitePadChannel(int index) override;
  void onWhitePadShown() override {}
  void onWhitePadHidden() override {}

 private:
  IKorviaSarnhawkPriv* _priv;
  const StripArea* _strips;
  Ui::KorviaSarnhawk& _ui;
  GWhitePadObject _pad;
};
