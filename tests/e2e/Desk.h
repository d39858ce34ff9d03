// What a hand can reach on the desk of a running program: the windows of its pictures, and its buttons by
// their places in a window of 1280 x 720 pixels at the upper left corner of the screen. Test thread.
#pragma once
#include <QPoint>
#include <QSize>
#include <array>

#include "support/KorviaProcess.h"
#include "support/VirtualDisplay.h"

namespace korvia::test {

inline constexpr QSize kDeskSize{1280, 720};

namespace place {
inline constexpr QPoint kTakeButton{660, 113};
inline constexpr QPoint kTakeMenuArrow{728, 113};
inline constexpr QPoint kEffectConfigItem{665, 203};
inline constexpr QPoint kLeverParked{575, 434};
inline constexpr QPoint kLeverMiddle{575, 254};
inline constexpr QPoint kLeverEnd{575, 66};
inline constexpr QPoint kRecordButton{790, 402};
inline constexpr QPoint kSnapshotButton{1094, 20};
inline constexpr QPoint kMinimizeButton{1186, 20};
inline constexpr QPoint kCloseButton{1258, 20};
inline constexpr std::array<QPoint, 3> kStripCloseButtons{QPoint(510, 467), QPoint(756, 467),
                                                          QPoint(1010, 467)};
}  // namespace place

/// Places in the transition editor, from its upper left corner.
namespace editor_place {
inline constexpr QPoint kErasePage{142, 22};
inline constexpr QPoint kCircleTile{459, 180};
inline constexpr QPoint kTakeEffectBox{748, 486};
}  // namespace editor_place

class Desk {
 public:
  Desk(const VirtualDisplay& display, KorviaProcess& korvia) : display_(display), korvia_(korvia) {}

  quint64 preview() { return windowOf(QStringLiteral("pvm")); }
  quint64 program() { return windowOf(QStringLiteral("pgm")); }
  /// The picture of a media strip.
  quint64 strip(int index);

  /// Waits until a window shows something with light and shade in it.
  bool showsPicture(quint64 window, int timeoutMs = 10000);
  /// Waits until a window's picture has changed.
  bool isMoving(quint64 window, int timeoutMs = 10000);
  /// Waits until the engine has made so many frames more.
  bool runsOn(int frames, int timeoutMs = 20000);

  /// Answers the question that is open with its "Yes". False when none is there.
  bool answerYes();

 private:
  quint64 windowOf(const QString& name);
  QJsonObject windows();

  const VirtualDisplay& display_;
  KorviaProcess& korvia_;
};

}  // namespace korvia::test
