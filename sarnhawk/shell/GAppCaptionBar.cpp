#include "GAppCaptionBar.h"

#include <QCoreApplication>
#include <QIcon>
#include <QMouseEvent>

#include "IMainFrame.h"
#include "tagKorviaProductInfo.h"
#include "ui_GAppCaptionBar.h"

GAppCaptionBar::GAppCaptionBar(const tagKorviaProductInfo* product, IMainFrame* frame, QWidget* parent)
    : QWidget(parent), _ui(std::make_unique<Ui::GAppCaptionBar>()), _frame(frame) {
  _ui->setupUi(this);
  // Without this attribute the style sheet draws no background on a plain widget.
  setAttribute(Qt::WA_StyledBackground);
  const QIcon icon(QCoreApplication::applicationDirPath() + QStringLiteral("/icon.png"));
  _ui->_appIconLabel->setPixmap(icon.pixmap(_ui->_appIconLabel->size()));
  _ui->_appTitleLabel->setText(productText(product->title));
  connectButtons();
  disableMissingWindow();
}

GAppCaptionBar::~GAppCaptionBar() = default;

void GAppCaptionBar::connectButtons() {
  using Slot = void (GAppCaptionBar::*)();
  const std::pair<QToolButton*, Slot> connections[] = {
      {_ui->_closeAppToolButton, &GAppCaptionBar::onClicked_closeAppToolButton},
      {_ui->_maxAppToolButton, &GAppCaptionBar::onClicked_maxAppToolButton},
      {_ui->_minAppToolButton, &GAppCaptionBar::onClicked_minAppToolButton},
      {_ui->_mainMenuToolButton, &GAppCaptionBar::onClicked_mainMenuToolButton},
      {_ui->_outputConfigToolButton, &GAppCaptionBar::onClicked_outputConfigToolButton},
      {_ui->_streamStatusToolButton, &GAppCaptionBar::onClicked_streamStatusToolButton},
      {_ui->_takeSnapshotToolButton, &GAppCaptionBar::onClicked_takeSnapshotToolButton},
      {_ui->_showNavProgramListToolButton, &GAppCaptionBar::onClicked_showNavProgramListToolButton},
  };
  for (const auto& [button, slot] : connections)
    connect(button, &QToolButton::clicked, this, slot);
}

void GAppCaptionBar::disableMissingWindow() {
  _ui->_showNavProgramListToolButton->setEnabled(false);
}

QToolButton* GAppCaptionBar::mainMenuToolButton() const {
  return _ui->_mainMenuToolButton;
}

bool GAppCaptionBar::isFrameEnlarged() const {
  const QWidget* frame = _frame->getWidget();
  return frame->isMaximized() || frame->isFullScreen();
}

void GAppCaptionBar::onClicked_closeAppToolButton() {
  _frame->quitApp();
}

void GAppCaptionBar::onClicked_maxAppToolButton() {
  if (isFrameEnlarged())
    _frame->getWidget()->showNormal();
  else
    _frame->getWidget()->showMaximized();
}

void GAppCaptionBar::onClicked_minAppToolButton() {
  _frame->getWidget()->showMinimized();
}

void GAppCaptionBar::onClicked_mainMenuToolButton() {
  _frame->showMainMenu(_ui->_mainMenuToolButton);
}

void GAppCaptionBar::onClicked_outputConfigToolButton() {
  _frame->showOutputConfig();
}

void GAppCaptionBar::onClicked_streamStatusToolButton() {
  _frame->showOutputStatistics();
}

void GAppCaptionBar::onClicked_takeSnapshotToolButton() {
  _frame->takeSnapshot();
}

void GAppCaptionBar::onClicked_pgmPlaybackToolButton() {
  _frame->pgmPlayback();
}

void GAppCaptionBar::onClicked_showNavProgramListToolButton() {
  _frame->showNavProgramList();
}

void GAppCaptionBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || isFrameEnlarged())
    return;
  _dragging = true;
  _dragOffset = mapToParent(event->pos());
}

void GAppCaptionBar::mouseMoveEvent(QMouseEvent* event) {
  if (_dragging)
    _frame->getWidget()->move(event->globalPos() - _dragOffset);
}

void GAppCaptionBar::mouseReleaseEvent(QMouseEvent*) {
  _dragging = false;
}

void GAppCaptionBar::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton)
    return;
  // The frame changes its size now, so the drag that the press began must end.
  _dragging = false;
  onClicked_maxAppToolButton();
}
