// Checks whether the network ports of the program are free, silently at the start and as a table when the
// operator asks for it. Console thread only.
#pragma once
#include <QDialog>
#include <QList>
#include <memory>

#include "tagCheckNetPortItem.h"

namespace Ui {
class GDialogHWCheckSwitch;
}

class GDialogHWCheckSwitch : public QDialog {
  Q_OBJECT

 public:
  explicit GDialogHWCheckSwitch(QWidget* parent = nullptr);
  ~GDialogHWCheckSwitch() override;

  /// Tries each port on loopback and keeps the result for the table; a busy port is logged. Shows nothing.
  /// True when all required ports are free. A port outside 1 to 65535 counts as busy.
  bool check(const QList<tagCheckNetPortItem>& items);

  /// Ports that this program listens on itself: from the next check on they are no hindrance and are shown as
  /// its own.
  void setOwnPorts(const QList<int>& ports) { _ownPorts = ports; }

 protected:
  void showEvent(QShowEvent* event) override;

 private slots:
  void onClicked_refreshPushButton();
  void onClicked_okPushButton();

 private:
  void fillTable();
  void setState(int row);

  std::unique_ptr<Ui::GDialogHWCheckSwitch> _ui;
  QList<tagCheckNetPortItem> _items;
  QList<int> _ownPorts;
  QList<bool> _free;  // by index of _items; own ports count as free
};
