// The frame as the caption bar sees it. Console thread.
#pragma once
#include "IUnknownEx.h"

class QWidget;

class IMainFrame : public IUnknownEx {
 public:
  virtual QWidget* getWidget() = 0;
  virtual void showMainMenu(QWidget* button) = 0;
  virtual void showOutputConfig() = 0;
  virtual void showOutputStatistics() = 0;
  virtual void showNavProgramList() = 0;
  virtual void takeSnapshot() = 0;
  virtual void pgmPlayback() = 0;
  virtual void quitApp() = 0;

 protected:
  ~IMainFrame() = default;
};
