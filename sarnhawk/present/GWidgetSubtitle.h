// The tab of the subtitles. Console thread.
#pragma once
#include "present/GListItemWidgetSubtitle.h"
#include "present/GWidgetSubtitleConfig.h"
#include "present/ItemTabOf.h"

namespace Ui {
class GWidgetSubtitle;
}

class GWidgetSubtitle : public ItemTabOf<SubtitleTraits> {
  Q_OBJECT

 public:
  explicit GWidgetSubtitle(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr);
  ~GWidgetSubtitle() override;

 public slots:
  void onClicked_addPushButton();
  void onClicked_delPushButton();

 protected:
  void fitRow(GListItemWidgetSubtitle* row) override;

 private:
  std::unique_ptr<Ui::GWidgetSubtitle> _ui;
};
