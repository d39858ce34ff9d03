// The frameless top-level window, with the caption bar above the console. The operator resizes it by dragging
// its edges. The library's factory returns it to the host. Console thread only.
#pragma once
#include <QFrame>
#include <QPoint>

#include "IKorviaSarnhawk.h"
#include "IMainFrame.h"

class GAppCaptionBar;
class KorviaSarnhawk;
class QMenu;

class MainFrame : public QFrame, public IMainFrame, public IKorviaSarnhawk {
  Q_OBJECT

 public:
  MainFrame();
  /// Does not stop the console, so close() must be called before.
  ~MainFrame() override;

  bool isValid() override;
  bool release() override;
  /// Answers for IMainFrame and IKorviaSarnhawk, and for nothing else.
  void* queryInterface(const Identifier* id, unsigned version) override;

  bool create(void* reserved1, IProgressSink* progress, void* reserved2, const tagKorviaProductInfo* product,
              const QString& rootPath) override;
  void close() override;

  QWidget* getWidget() override;
  void showMainMenu(QWidget* button) override;
  void showOutputConfig() override;
  void showOutputStatistics() override;
  void showNavProgramList() override;
  void takeSnapshot() override;
  void pgmPlayback() override;
  void quitApp() override;

  /// Selects the edges under the mouse, or drags them while the button is pressed. Positions are in
  /// coordinates of the frame.
  void onHoverMove(const QPoint& pos, const QPoint& oldPos);

  /// Position of a menu that has its size already: right-aligned with the button, 4 pixels below it.
  static QPoint mainMenuPosition(const QWidget* button, const QMenu* menu);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  /// A close by the window manager asks the operator first. A close by the program closes the window.
  void closeEvent(QCloseEvent* event) override;

  GAppCaptionBar* _captionBar = nullptr;
  KorviaSarnhawk* _console = nullptr;

 private:
  void layOut();
  void fitToScreen();
  void pickEdges(const QPoint& pos);
  void dragEdges(const QPoint& pos, const QPoint& oldPos);

  int _grabOffsetX = 0;
  int _grabOffsetY = 0;
  bool _pressed = false;
  bool _resizeLeft = false;
  bool _resizeRight = false;
  bool _resizeBottom = false;
};
