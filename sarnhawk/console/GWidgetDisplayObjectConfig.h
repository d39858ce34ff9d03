// The one floating window that tells what a channel shows and edits it. Console thread.
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

  /// Loads the channel; ids that are no channel only get remembered.
  void showChannel(int objectId);
  /// The id of the last showChannel, 0 before it.
  int objectId() const { return _objectId; }

 protected:
  /// Hides the window and ignores the event, so that whoever asked knows that the window is still there.
  void closeEvent(QCloseEvent* event) override;

 private:
  QString mediaText(int index) const;
  QString stageText(int index) const;

  std::unique_ptr<Ui::GWidgetDisplayObjectConfig> _ui;
  IKorviaSarnhawkPriv* _priv;
  int _objectId = 0;
};
