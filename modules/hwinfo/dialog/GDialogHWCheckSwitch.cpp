#include "GDialogHWCheckSwitch.h"

#include <QLoggingCategory>

#include "LoopbackPort.h"
#include "ui_GDialogHWCheckSwitch.h"

namespace {

Q_LOGGING_CATEGORY(lcHardware, "korvia.hwinfo", QtInfoMsg)

enum Column { PortColumn, NeedColumn, StateColumn };

QTableWidgetItem* makeCell(const QString& text) {
  auto* cell = new QTableWidgetItem(text);
  cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  return cell;
}

}  // namespace

GDialogHWCheckSwitch::GDialogHWCheckSwitch(QWidget* parent)
    : QDialog(parent), _ui(std::make_unique<Ui::GDialogHWCheckSwitch>()) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
  _ui->_portTableWidget->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  connect(_ui->_refreshPushButton, &QPushButton::clicked, this,
          &GDialogHWCheckSwitch::onClicked_refreshPushButton);
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogHWCheckSwitch::onClicked_okPushButton);
}

GDialogHWCheckSwitch::~GDialogHWCheckSwitch() = default;

bool GDialogHWCheckSwitch::check(const QList<tagCheckNetPortItem>& items) {
  _items = items;
  _free.clear();
  bool allRequired = true;
  for (const tagCheckNetPortItem& item : std::as_const(_items)) {
    const bool free = _ownPorts.contains(item.port) || korvia::LoopbackPort::isFree(item.port);
    _free.append(free);
    if (free)
      continue;
    allRequired = allRequired && !item.required;
    qCWarning(lcHardware, "network port %d is in use (%s)", item.port,
              item.required ? "required" : "optional");
  }
  fillTable();
  return allRequired;
}

void GDialogHWCheckSwitch::fillTable() {
  QTableWidget* table = _ui->_portTableWidget;
  table->setRowCount(_items.size());
  int busy = 0;
  for (int row = 0; row < _items.size(); ++row) {
    busy += _free[row] ? 0 : 1;
    table->setItem(row, PortColumn, makeCell(QString::number(_items[row].port)));
    table->setItem(row, NeedColumn, makeCell(_items[row].required ? tr("Required") : tr("Optional")));
    setState(row);
  }
  _ui->_resultLabel->setText(busy == 0 ? tr("No other program uses these ports.")
                                       : tr("In use by other programs: %1").arg(busy));
}

void GDialogHWCheckSwitch::setState(int row) {
  const bool isOwn = _ownPorts.contains(_items[row].port);
  QTableWidgetItem* state = makeCell(isOwn ? tr("This program") : _free[row] ? tr("Free") : tr("In use"));
  if (!isOwn)
    state->setForeground(_free[row] ? QColor(0x4c, 0xaf, 0x7a) : QColor(0xe0, 0x6c, 0x60));
  _ui->_portTableWidget->setItem(row, StateColumn, state);
}

void GDialogHWCheckSwitch::showEvent(QShowEvent* event) {
  // The result of the start is old by the time that the operator asks.
  check(_items);
  QDialog::showEvent(event);
}

void GDialogHWCheckSwitch::onClicked_refreshPushButton() {
  check(_items);
}

void GDialogHWCheckSwitch::onClicked_okPushButton() {
  accept();
}
