#include "GDialogAudoDevCheck.h"

#include <QTimer>
#include <utility>

#include "GLAudioDeviceInfo.h"
#include "ui_GDialogAudoDevCheck.h"

namespace {

constexpr int kCheckIntervalMs = 1000;
constexpr int kMaxTicks = 61;

void showResult(QLabel* label, bool found) {
  label->setText(found ? GDialogAudoDevCheck::tr("Found") : GDialogAudoDevCheck::tr("No Found"));
  label->setStyleSheet(found ? QString() : QStringLiteral("color: rgb(180, 10, 10);"));
}

}  // namespace

GDialogAudoDevCheck::GDialogAudoDevCheck(const QString& pgmName, const QString& pvmName, QWidget* parent)
    : GDialogAudoDevCheck(
          pgmName, pvmName, [] { return GLAudioDeviceInfo::enumAudioDeviceList(QStringLiteral("dsound")); },
          parent) {}

GDialogAudoDevCheck::GDialogAudoDevCheck(const QString& pgmName, const QString& pvmName, DeviceLister lister,
                                         QWidget* parent)
    : QDialog(parent),
      _ui(std::make_unique<Ui::GDialogAudoDevCheck>()),
      _lister(std::move(lister)),
      _pgmName(pgmName),
      _pvmName(pvmName),
      _timer(new QTimer(this)) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogAudoDevCheck::onClicked_okPushButton);
  connect(_timer, &QTimer::timeout, this, &GDialogAudoDevCheck::onTimer);
  _timer->start(kCheckIntervalMs);
  _ui->_pgmNameLabel->setText(_pgmName);
  _ui->_pvmNameLabel->setText(_pvmName);
  check();
}

GDialogAudoDevCheck::~GDialogAudoDevCheck() = default;

void GDialogAudoDevCheck::check() {
  const QStringList devices = _lister();
  _pgmFound = !_pgmName.isEmpty() && devices.contains(_pgmName);
  _pvmFound = !_pvmName.isEmpty() && devices.contains(_pvmName);
  showResult(_ui->_pgmResultLabel, _pgmFound);
  showResult(_ui->_pvmResultLabel, _pvmFound);
  if (_pgmFound && _pvmFound)
    accept();
}

void GDialogAudoDevCheck::onTimer() {
  if (_ticks++ < kMaxTicks)
    check();
  else
    reject();
}

void GDialogAudoDevCheck::onClicked_okPushButton() {
  // The operator does not want to wait, so the dialog ends as at the time limit.
  reject();
}
