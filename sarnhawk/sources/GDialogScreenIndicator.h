// Shows the number of a screen on that screen for five seconds. Console thread.
#pragma once
#include <QDialog>
#include <memory>

class QTimer;

namespace Ui {
class GDialogScreenIndicator;
}

class GDialogScreenIndicator : public QDialog {
  Q_OBJECT

 public:
  GDialogScreenIndicator(int screenIndex, QWidget* parent);
  ~GDialogScreenIndicator() override;

  /// Does nothing when the screen is gone.
  void showOnScreen();

 public slots:
  void onWorkTimer();

 private:
  std::unique_ptr<Ui::GDialogScreenIndicator> _ui;
  int _screenIndex;
  QTimer* _timer;
};
