// The disk of taps: spread evenly, opposite in pairs, and what it makes of a point.
#include <QtTest>
#include <cmath>
#include <vector>

#include "engine/mix/blurs/PoissonDisk.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

FrameRef blurred(const FrameRef& picture, double radius) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(picture->size()));
  blurByDisk(*picture, radius, scratch, *out);
  return std::move(out).publish();
}

}  // namespace

class PoissonDiskTest : public QObject {
  Q_OBJECT

 private slots:
  void tapsKeepApart() {
    std::vector<PlanePoint> all;
    all.reserve(64);
    for (const PlanePoint& point : poissonHalfDisk()) {
      all.push_back(point);
      all.push_back({-point.x, -point.y});
    }
    double across = 0;
    double down = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
      QVERIFY(std::hypot(all[i].x, all[i].y) < 1);
      across += all[i].x * all[i].x / 64;
      down += all[i].y * all[i].y / 64;
      for (std::size_t other = 0; other < i; ++other)
        QVERIFY(std::hypot(all[i].x - all[other].x, all[i].y - all[other].y) > 0.18);
    }
    // An even disk has 0.25.
    QVERIFY(qAbs(across - 0.25) < 0.01);
    QVERIFY(qAbs(down - 0.25) < 0.01);
  }

  void withoutRadiusChangesNothing() {
    const FrameRef picture = withoutSpare(*noise({37, 21}, 3));
    QCOMPARE(difference(*blurred(picture, 0), *picture).largest, 0);
  }

  void followsItsTaps() {
    const FrameRef picture = withoutSpare(*noise({50, 30}, 4));
    const double radius = 6;
    const FrameRef out = blurred(picture, radius);
    for (const int plane : {Frame::Y, Frame::V}) {
      const PlaneView in = planeOf(*picture, plane);
      const double reach = plane == Frame::Y ? radius : radius / 2;
      const auto sampleAt = [&](double x, double y) {
        x = qBound(0.0, x, in.width - 1.0);
        y = qBound(0.0, y, in.height - 1.0);
        const int left = qMin(static_cast<int>(x), in.width - 2);
        const int top = qMin(static_cast<int>(y), in.height - 2);
        const auto between = [&](const std::uint8_t* row) {
          return row[left] + (row[left + 1] - row[left]) * (x - left);
        };
        return between(in.row(top)) + (between(in.row(top + 1)) - between(in.row(top))) * (y - top);
      };
      for (int y = 0; y < in.height; ++y)
        for (int x = 0; x < in.width; ++x) {
          double sum = 0;
          for (const PlanePoint& point : poissonHalfDisk())
            sum += sampleAt(x + point.x * reach, y + point.y * reach) +
                   sampleAt(x - point.x * reach, y - point.y * reach);
          // Taps lie on sixteenths of a sample.
          QVERIFY(qAbs(planeOf(*out, plane).row(y)[x] - sum / 64) < 2);
        }
    }
  }

  void aPointBecomesADisk() {
    const FrameRef point = frameOf({81, 61}, [](int plane, int x, int y) {
      return plane == 0 && qAbs(x - 40) < 3 && qAbs(y - 30) < 3 ? 255 : 16;
    });
    const FrameRef disk = blurred(point, 12);
    const PlaneView luma = planeOf(*disk, Frame::Y);
    for (int y = 0; y < 61; ++y)
      for (int x = 0; x < 81; ++x) {
        QCOMPARE(int(luma.row(y)[x]), int(luma.row(60 - y)[80 - x]));
        const double distance = std::hypot(x - 40, y - 30);
        if (distance > 16)
          QCOMPARE(int(luma.row(y)[x]), 16);
        if (distance < 8)
          QVERIFY2(luma.row(y)[x] > 20 && luma.row(y)[x] < 60, qPrintable(QString::number(luma.row(y)[x])));
      }
  }
};

QTEST_GUILESS_MAIN(PoissonDiskTest)
#include "tst_poisson_disk.moc"
