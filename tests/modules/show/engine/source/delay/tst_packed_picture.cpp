// Pictures as bytes: exact in full size, near in half size, also with odd sides.
#include <QtTest>
#include <vector>

#include "engine/source/delay/PackedPicture.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

FrameRef throughBytes(const FrameRef& picture, DelayPlan::PictureScale scale) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(packedBytes(picture->size(), scale)));
  packPicture(*picture, scale, bytes.data());
  FramePool pool(picture->size());
  MutableFrame frame = pool.acquire();
  unpackPicture(bytes.data(), scale, *frame);
  return std::move(frame).publish();
}

int mostDifference(const FrameRef& a, const FrameRef& b) {
  int most = 0;
  for (const int plane : kOpaquePlanes) {
    const PlaneView first = planeOf(*a, plane);
    const PlaneView second = planeOf(*b, plane);
    for (int y = 0; y < first.height; ++y)
      for (int x = 0; x < first.width; ++x)
        most = std::max(most, std::abs(int{first.row(y)[x]} - int{second.row(y)[x]}));
  }
  return most;
}

}  // namespace

class PackedPictureTest : public QObject {
  Q_OBJECT

 private slots:
  void fullSizeIsExact() {
    for (const FrameSize size : {FrameSize{64, 36}, FrameSize{17, 5}, FrameSize{2, 2}})
      QCOMPARE(mostDifference(noise(size, 7), throughBytes(noise(size, 7), DelayPlan::PictureScale::Full)),
               0);
  }

  void halfSizeLooksTheSame() {
    const FrameRef picture = scenery({640, 360}, 0);
    const int difference = mostDifference(picture, throughBytes(picture, DelayPlan::PictureScale::Half));
    QVERIFY2(difference <= 4, qPrintable(QString::number(difference)));
  }

  void halfSizeKeepsEvenColors() {
    for (const FrameSize size : {FrameSize{64, 36}, FrameSize{18, 6}, FrameSize{2, 2}})
      QCOMPARE(mostDifference(flat(size, 77), throughBytes(flat(size, 77), DelayPlan::PictureScale::Half)),
               0);
  }

  void bytesAreThoseOfThePlanes() {
    QCOMPARE(packedBytes({1920, 1080}, DelayPlan::PictureScale::Full), qint64(3'110'400));
    QCOMPARE(packedBytes({1920, 1080}, DelayPlan::PictureScale::Half), qint64(777'600));
    QCOMPARE(packedBytes({5, 3}, DelayPlan::PictureScale::Full), qint64(15 + 2 * 6));
  }
};

QTEST_GUILESS_MAIN(PackedPictureTest)
#include "tst_packed_picture.moc"
