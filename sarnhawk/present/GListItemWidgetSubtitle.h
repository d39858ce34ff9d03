// Row of a subtitle, with its text. Console thread.
#pragma once
#include <memory>

#include "present/ItemRowOf.h"
#include "present/SubtitleTraits.h"

namespace Ui {
class GListItemWidgetSubtitle;
}

class GListItemWidgetSubtitle : public ItemRowOf<SubtitleTraits> {
  Q_OBJECT

 public:
  GListItemWidgetSubtitle(IKorviaSarnhawkPriv* priv, IGListItemWidgetSubtitleEventSink* sink,
                          const tagKorviaSubtitleParam& param, QListWidgetItem* item);
  ~GListItemWidgetSubtitle() override;

 protected:
  void showItem() override;
  /// The press also goes on to the list, whose own selection chooses what is deleted.
  void mousePressEvent(QMouseEvent* event) override;

 private:
  std::unique_ptr<Ui::GListItemWidgetSubtitle> _ui;
};
