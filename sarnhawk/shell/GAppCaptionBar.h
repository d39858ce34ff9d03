// The top row of the frame, which replaces the title bar of the window system. Console thread only.
#pragma once
#include <QPoint>
#include <QWidget>
#include <memory>

class IMainFrame;
class QToolButton;
struct tagKorviaProductInfo;

namespace Ui {
class GAppCaptionBar;
}

class GAppCaptionBar : public QWidget {
  Q_OBJECT

 public:
  /// `product` is read in the constructor only. `frame` is not owned and must outlive the caption bar.
  GAppCaptionBar(const tagKorviaProductInfo* product, IMainFrame* frame, QWidget* parent = nullptr);
  ~GAppCaptionBar() override;

  /// The button that the console sets its system menu on.
  QToolButton* mainMenuToolButton() const;

 public slots:
  void onClicked_closeAppToolButton();
  void onClicked_maxAppToolButton();
  void onClicked_minAppToolButton();
  void onClicked_mainMenuToolButton();
  void onClicked_outputConfigToolButton();
  void onClicked_streamStatusToolButton();
  void onClicked_takeSnapshotToolButton();
  void onClicked_pgmPlaybackToolButton();
  void onClicked_showNavProgramListToolButton();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  void connectButtons();
  /// Disables the button whose window the console does not have yet.
  void disableMissingWindow();
  bool isFrameEnlarged() const;

  std::unique_ptr<Ui::GAppCaptionBar> _ui;
  IMainFrame* _frame;
  bool _dragging = false;
  QPoint _dragOffset;
};
