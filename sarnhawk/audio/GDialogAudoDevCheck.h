// Waits at the start until the audio devices of the PGM and PVM outputs are found. Console thread only.
#pragma once
#include <QDialog>
#include <QStringList>
#include <functional>
#include <memory>

class QLabel;
class QTimer;

namespace Ui {
class GDialogAudoDevCheck;
}

class GDialogAudoDevCheck : public QDialog {
  Q_OBJECT

 public:
  using DeviceLister = std::function<QStringList()>;

  GDialogAudoDevCheck(const QString& pgmName, const QString& pvmName, QWidget* parent = nullptr);
  /// The same with another source of device names.
  GDialogAudoDevCheck(const QString& pgmName, const QString& pvmName, DeviceLister lister, QWidget* parent);
  ~GDialogAudoDevCheck() override;

  /// Whether the device was there at the last check. Read after exec().
  bool pgmFound() const { return _pgmFound; }
  bool pvmFound() const { return _pvmFound; }

 public slots:
  void onClicked_okPushButton();
  void onTimer();

 private:
  void check();

  std::unique_ptr<Ui::GDialogAudoDevCheck> _ui;
  DeviceLister _lister;
  QString _pgmName;
  QString _pvmName;
  QTimer* _timer;
  int _ticks = 0;
  bool _pgmFound = false;
  bool _pvmFound = false;
};
