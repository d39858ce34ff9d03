// What the paint pad tells the console. Called on the console thread.
#pragma once
#include <QImage>

class IGWhitePadSink {
 public:
  /// A new drawing, ARGB32 with alpha, of the size that the pad was started with.
  virtual void onCommitWhitePadImage(const QImage& image) = 0;
  /// Whether the drawing lies over the program; false also when the pad ends by itself.
  virtual void onSetWhitePadValid(bool valid) = 0;
  /// Freezes or releases the program picture below the drawing.
  virtual void onPauseWhitePad(bool pause) = 0;
  /// The operator picked a channel in the pad: 0 to 3 media channels, from 4 on stage channels.
  virtual void onSelectWhitePadChannel(int index) = 0;
  /// The pad's window was shown.
  virtual void onWhitePadShown() = 0;
  /// The pad's window was hidden.
  virtual void onWhitePadHidden() = 0;

 protected:
  ~IGWhitePadSink() = default;
};
