// Draws the frames of a demo film. A film is a loop: its last frame leads back to its first.
//
// Used on one thread. Needs a QGuiApplication for its fonts.
#pragma once

#include <QImage>

class QPainter;

namespace korvia {

struct DemoTheme;

class DemoPicture {
 public:
  // `variant` is 1 (blue, discs afloat) or 2 (dusk, hills that pass); anything else is drawn as 1.
  explicit DemoPicture(int variant);

  // Frame `frame`, counted from 0, as kDemoWidth x kDemoHeight in Format_RGB32. The image is drawn over
  // at the next call, unless the caller holds a copy.
  const QImage& draw(int frame);

 private:
  void drawDiscs(QPainter& painter, double turn) const;
  void drawHills(QPainter& painter, double turn) const;
  void drawDial(QPainter& painter, int frame) const;
  void drawClock(QPainter& painter, int frame) const;
  void drawFlash(QPainter& painter, int frame) const;
  void drawProgress(QPainter& painter, int frame) const;

  const DemoTheme& theme_;
  QImage backdrop_;
  QImage dial_;
  QImage frame_;
};

}  // namespace korvia
