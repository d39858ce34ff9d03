// A floating window of the console. It stays on top of others, has a minimise button, and lives until the
// console ends. Console thread.
#pragma once
#include <QWidget>

#include "console/ConsolePage.h"

class GToolWindow : public QWidget, public ConsolePage {
  Q_OBJECT

 public:
  explicit GToolWindow(QWidget* parent = nullptr);

  /// Shows the window in front of all others, also when it was minimised.
  void present();

  void onHideAll() override { hide(); }
  /// Deletes the window.
  void onDestroyUi() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};
