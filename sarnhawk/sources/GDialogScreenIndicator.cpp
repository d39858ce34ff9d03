#include "sources/GDialogScreenIndicator.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include "ui_GDialogScreenIndicator.h"

namespace {
constexpr int kShownMs = 5000;
}

GDialogScreenIndicator::GDialogScreenIndicator(int screenIndex, QWidget* parent)
    : QDialog(parent, Qt::ToolTip),
      _ui(std::make_unique<Ui::GDialogScreenIndicator>()),
      _screenIndex(screenIndex),
      _timer(new QTimer(this)) {
  _ui->setupUi(this);
  _ui->_indicatorLabel->setText(QString::number(screenIndex));
  connect(_timer, &QTimer::timeout, this, &GDialogScreenIndicator::onWorkTimer);
}

GDialogScreenIndicator::~GDialogScreenIndicator() = default;

void GDialogScreenIndicator::showOnScreen() {
  const QScreen* screen = QGuiApplication::screens().value(_screenIndex);
  if (!screen)
    return;
  QRect place(QPoint(), size());
  place.moveCenter(screen->geometry().center());
  setGeometry(place);
  setFocus();
  show();
  _timer->start(kShownMs);
}

void GDialogScreenIndicator::onWorkTimer() {
  _timer->stop();
  hide();
}
