// What the buses show: channels on black, and reports in their order.
#include <QtTest>
#include <cmath>
#include <map>

#include "KorviaShowEvents.h"
#include "engine/bus/Switcher.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{32, 18};

/// The picture with an alpha plane, half transparent all over.
FrameRef withAlpha(const FrameRef& picture) {
  FramePool pool(picture->size(), FrameAlpha::Plane);
  MutableFrame frame = pool.acquire();
  for (const int plane : kOpaquePlanes) {
    const WritablePlane view = writablePlaneOf(*frame, plane);
    for (int y = 0; y < view.height; ++y)
      std::copy_n(planeOf(*picture, plane).row(y), view.width, view.row(y));
  }
  const WritablePlane alpha = writablePlaneOf(*frame, Frame::A);
  for (int y = 0; y < alpha.height; ++y)
    std::fill_n(alpha.row(y), alpha.width, std::uint8_t{128});
  return std::move(frame).publish();
}

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 id, const QVariant& a1, const QVariant& a2, const QVariant&,
                  const QVariant&) override {
    if (id == ShowEventSwitchPosition)
      log << QString("position %1").arg(a1.toDouble());
    else
      log << QString("%1 %2").arg(a1.toInt() == PGMObject ? "pgm" : "pvm").arg(a2.toInt());
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  QStringList log;
};

class Pictures final : public ChannelPictures {
 public:
  FrameRef picture(int id) override { return pictures[id]; }
  std::map<int, FrameRef> pictures;
};

}  // namespace

class SwitcherTest : public QObject {
  Q_OBJECT

 private:
  Host host_;
  Pictures pictures_;
  std::unique_ptr<Switcher> switcher_;

 private slots:
  void init() {
    host_.log.clear();
    pictures_.pictures = {{0, flat(kSize, 16)}, {1, noise(kSize, 1)}, {2, withAlpha(noise(kSize, 2))}};
    switcher_ = std::make_unique<Switcher>(pictures_);
    switcher_->setHost(&host_);
    switcher_->open({kSize, {25, 1}});
    switcher_->selectChannel(PGMObject, 1);
    switcher_->selectChannel(PVMObject, 2);
    host_.log.clear();
  }

  void anOpaqueChannelIsHandedOnAsItIs() { QVERIFY(switcher_->programPicture() == pictures_.pictures[1]); }

  void aChannelWithAlphaLiesOnBlack() {
    // Premultiplied colours are the picture on black: nothing is copied, and the picture stays the same from
    // tick to tick.
    QVERIFY(switcher_->previewPicture() == pictures_.pictures[2]);
    QVERIFY(switcher_->previewPicture() == switcher_->previewPicture());
  }

  void transitionsDoNotLookAtAlpha() {
    pictures_.pictures[3] = noise(kSize, 2);
    const auto halfWayTo = [this](int channel) {
      switcher_->selectChannel(PGMObject, 1);
      switcher_->take(channel, 22, 1.0, 0);
      switcher_->step(12);
      const FrameRef mixed = switcher_->programPicture();
      switcher_->step(13);
      return mixed;
    };
    const FrameRef withAlpha = halfWayTo(2);
    const FrameRef without = halfWayTo(3);
    QVERIFY(!withAlpha->hasAlpha());
    QCOMPARE(difference(*withAlpha, *without).largest, 0);
  }

  void theChannelsFollowTakesAndLever() {
    const auto isOn = [this](int preview, int program, int next, double position) {
      const BusChannels channels = switcher_->channels();
      return channels.preview == preview && channels.program == program && channels.next == next &&
             std::abs(channels.position - position) < 1e-6;
    };
    QVERIFY(isOn(2, 1, 0, 0));
    switcher_->take(2, 22, 1.0, 0);
    switcher_->step(5);
    QVERIFY(isOn(2, 1, 2, 0.2));
    switcher_->moveLever(PGMObject, 0.7F);
    switcher_->step(1);
    QVERIFY(isOn(2, 1, 2, 0.7));
    switcher_->moveLever(PGMObject, 1.0F);
    switcher_->step(1);
    QVERIFY(isOn(1, 2, 0, 0));
    // With a cut the lever changes nothing up to its end.
    switcher_->take(1, 0, 1.0, 0);
    switcher_->step(1);
    switcher_->moveLever(PGMObject, 0.6F);
    switcher_->step(1);
    QVERIFY(isOn(2, 1, 2, 0));
  }

  void selectingAnythingButABusIsIgnored() {
    switcher_->selectChannel(KaraokeObject, 2);
    QCOMPARE(host_.log, QStringList());
    QCOMPARE(switcher_->pgm().channel(), 1);
  }
};

QTEST_GUILESS_MAIN(SwitcherTest)
#include "tst_switcher.moc"
