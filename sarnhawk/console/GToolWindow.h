// A floating window of the console: on top of others, with a minimise button, kept to the console's end.
// Console thread.
#pragma once
#include <QWidget>

#include "console/ConsolePage.h"

class GToolWindow : public QWidget, public ConsolePage {
  Q_OBJECT

 public:
  explicit GToolWindow(QWidget* parent = nullptr);

  /// Brings the window before the operator, also when it was minimised.
  void present();

  void onHideAll() override { hide(); }
  /// Deletes the window.
  void onDestroyUi() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};
