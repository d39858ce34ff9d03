// The transition editor: pages of thumbnails from which the operator chooses effect, easing and duration of a
// take button's slot. Console thread.
#pragma once
#include <array>
#include <memory>

#include "console/GToolWindow.h"
#include "present/IGListWidgetItemEventSink.h"
#include "transitions/TransitionCatalogue.h"

class IKorviaSarnhawkPriv;
class QPushButton;
struct tagKorviaTakeButton;

namespace Ui {
class GWidgetTransitionEffectConfig;
}

class GWidgetTransitionEffectConfig : public GToolWindow, public IGListWidgetItemEventSink {
  Q_OBJECT

 public:
  explicit GWidgetTransitionEffectConfig(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr);
  ~GWidgetTransitionEffectConfig() override;

  /// Points the editor at the slot of a take button, 0 to 3, and shows what it holds. Any other index leaves
  /// it without a slot: nothing is marked then, and clicks change nothing.
  void setTransition(int transitionIndex);

  void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) override;

 public slots:
  void onClicked_navTransitionEffectPage();
  void onValueChanged_durationDoubleSpinBox(double value);

 private:
  /// A page with its navigation button. The pages of the catalogues come first, in the order of the
  /// catalogues.
  struct Page {
    QPushButton* button;
    QWidget* page;
    QListWidget* listWidget;
    QList<GListWidgetItem*> tiles;
  };
  static constexpr int kEasingPage = TransitionCatalogue::kCatalogCount;

  void fillPage(Page& page, QList<GListWidgetItemInfo> infos);
  /// The slot under edit in the live record, null without one.
  tagKorviaTakeButton* slot() const;
  bool isEasing(const QListWidget* listWidget) const { return listWidget == _pages[kEasingPage].listWidget; }

  std::unique_ptr<Ui::GWidgetTransitionEffectConfig> _ui;
  IKorviaSarnhawkPriv* _priv;
  std::array<Page, kEasingPage + 1> _pages;
  int _transitionIndex = -1;
};
