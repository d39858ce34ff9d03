// The desk's row of strips: builds the strips of a layout mode and finds them again. Console thread.
#pragma once
#include <QList>
#include <array>

#include "KorviaShowObjectID.h"
#include "console/ConsolePage.h"

class GWidgetDisplayObject;
class IKorviaSarnhawkPriv;
class QWidget;
struct StripChooser;

class StripArea : public ConsolePage {
 public:
  /// None is owned; all must outlive the strips.
  StripArea(IKorviaSarnhawkPriv* priv, const StripChooser* chooser) : _priv(priv), _chooser(chooser) {}

  /// Fills the area with the strips of the mode, media first. No strips for a mode that does not exist.
  void build(int layoutMode, QWidget* area);
  /// Hides the buttons that float over the strips.
  void hideFloats();

  void onEngineOpened() override;
  void onFrameTick() override;
  void onWorkTick() override;
  void onHideAll() override;
  /// Leaves an area without strips.
  void onDestroyUi() override;

  /// In the order in which they were made.
  const QList<GWidgetDisplayObject*>& strips() const { return _strips; }
  /// Null when there is no such strip.
  GWidgetDisplayObject* media(int index) const;
  GWidgetDisplayObject* stage(int index) const;
  /// Holders of the strips, by kind.
  const QList<QWidget*>& mediaHolders() const { return _mediaHolders; }
  const QList<QWidget*>& stageHolders() const { return _stageHolders; }

 private:
  static constexpr int kSlotCount = kMediaChannelMax + kStageChannelMax;

  IKorviaSarnhawkPriv* _priv;
  const StripChooser* _chooser;
  QList<GWidgetDisplayObject*> _strips;
  /// Eight media slots, then four stage slots.
  std::array<GWidgetDisplayObject*, kSlotCount> _slots{};
  QList<QWidget*> _mediaHolders;
  QList<QWidget*> _stageHolders;
};
