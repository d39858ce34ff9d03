// A floating window of the console: on top of others, with a minimise button, kept to the console's end.
// Console thread.
#pragma once
#include <QWidget>

class GToolWindow : public QWidget {
  Q_OBJECT

 public:
  explicit GToolWindow(QWidget* parent = nullptr);

  /// Brings the window before the operator, also when it was minimised.
  void present();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};
