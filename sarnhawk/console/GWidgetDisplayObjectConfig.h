// The floating window that shows and edits what a channel shows. Console thread.
#pragma once
#include <memory>

#include "console/GToolWindow.h"

class IKorviaSarnhawkPriv;

namespace Ui {
class GWidgetDisplayObjectConfig;
}

class GWidgetDisplayObjectConfig : public GToolWindow {
  Q_OBJECT

 public:
  explicit GWidgetDisplayObjectConfig(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr);
  ~GWidgetDisplayObjectConfig() override;

  /// Loads the channel. An id that is no channel is only stored.
  void showChannel(int objectId);
  /// The id of the last showChannel, 0 before it.
  int objectId() const { return _objectId; }

 protected:
  /// Hides the window and ignores the event, which tells the sender that the window still exists.
  void closeEvent(QCloseEvent* event) override;

 private:
  QString mediaText(int index) const;
  QString stageText(int index) const;

  std::unique_ptr<Ui::GWidgetDisplayObjectConfig> _ui;
  IKorviaSarnhawkPriv* _priv;
  int _objectId = 0;
};
