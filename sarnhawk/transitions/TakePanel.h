// The four take buttons: what they show, and the take that a button runs. Console thread.
#pragma once
#include "transitions/TransitionCatalogue.h"

class IKorviaSarnhawkPriv;
class QToolButton;
class StripArea;
struct tagKorviaTakeButton;

namespace Ui {
class KorviaSarnhawk;
}

class TakePanel {
 public:
  static constexpr int kButtonCount = 4;

  /// None is owned; all must outlive the panel.
  TakePanel(IKorviaSarnhawkPriv* priv, const StripArea* strips, Ui::KorviaSarnhawk& ui)
      : _priv(priv), _strips(strips), _ui(ui) {}

  /// Null for an index that no button has.
  QToolButton* button(int index) const;
  /// Shows the transition of the button's slot in the record as text, tool tip and icon.
  void update(int index);
  /// What the button is called, in one line: "Slide Left".
  QString transitionName(int index) const;
  /// Takes the channel with the transition of the button's slot. The film of the channel is released before
  /// the take is posted, so that it moves in the first frame of the transition.
  void take(int channelId, int index);
  /// Effects of a catalogue, all of them for catalogue 8.
  QList<GListWidgetItemInfo>* effectList(int catalog) { return _transitions.effectList(catalog); }

  /// The effect number that a take of the slot sends: the slot's own, or for a random slot a draw from 0 to
  /// 79, which may be a number that the catalogue leaves out. The time seeds the draw, so that it stays the
  /// same within one second.
  static qint32 effectToSend(const tagKorviaTakeButton& slot, qint64 secondsSinceEpoch);

 private:
  IKorviaSarnhawkPriv* _priv;
  const StripArea* _strips;
  Ui::KorviaSarnhawk& _ui;
  TransitionCatalogue _transitions;
};
