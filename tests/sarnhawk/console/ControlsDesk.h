// A console whose engine is open and whose first channel shows a film, with short ways to its controls. GUI
// thread.
#pragma once
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include "ConsoleDesk.h"

class ControlsDesk : public ConsoleDesk {
 public:
  ControlsDesk() {
    isOpen = start();
    source = show.source(0);
    show.clearEvents();
    show.calls.clear();
  }

  QSlider* slider(const char* name) const { return child<QSlider>(name); }
  QSlider* lever() const { return slider("_switchProcessPosVerticalSlider"); }
  QPushButton* button(const char* name) const { return child<QPushButton>(name); }
  QString text(const char* name) const { return child<QLabel>(name)->text(); }
  bool activate() {
    frame.activateWindow();
    return QTest::qWaitForWindowActive(&frame);
  }
  /// Who gets the next key. The frame's own answer: floats that come up make windows active here.
  QWidget* focus() const { return frame.focusWidget(); }
  /// A key as it comes from the window system: to whoever has the focus.
  void press(Qt::Key key) { QTest::keyClick(frame.windowHandle(), key); }
  tagKorviaSarnhawkConfig* config() const { return console->getConfig(); }

  bool isOpen = false;
  ScriptedSource* source = nullptr;
};
