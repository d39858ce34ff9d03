// Draws the frames of a demo film, which is a loop: the first frame follows the last one without a jump. Used
// on one thread. Needs a QGuiApplication for its fonts.
#pragma once

#include <QImage>

class QPainter;

namespace korvia {

struct DemoTheme;

class DemoPicture {
 public:
  // `variant` is 1 (blue, floating discs) or 2 (dusk, passing hills). Any other number is drawn as 1.
  explicit DemoPicture(int variant);

  // Frame `frame`, counted from 0, as kDemoWidth x kDemoHeight in Format_RGB32. The next call
  // overwrites the image unless the caller holds a copy.
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
