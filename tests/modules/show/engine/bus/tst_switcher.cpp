// What the buses show: opaque pictures, and reports in their order.
#include <QtTest>
#include <map>

#include "KorviaShowEvents.h"
#include "engine/bus/Switcher.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{32, 18};

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
    pictures_.pictures = {{0, flat(kSize, 16)}, {1, noise(kSize, 1)}, {2, noise(kSize, 2, true)}};
    switcher_ = std::make_unique<Switcher>(pictures_);
    switcher_->setHost(&host_);
    switcher_->open({kSize, {25, 1}});
    switcher_->selectChannel(PGMObject, 1);
    switcher_->selectChannel(PVMObject, 2);
    host_.log.clear();
  }

  void anOpaqueChannelIsHandedOnAsItIs() { QVERIFY(switcher_->programPicture() == pictures_.pictures[1]); }

  void aChannelWithAlphaLiesOnBlack() {
    const FrameRef shown = switcher_->previewPicture();
    QVERIFY(!shown->hasAlpha());
    // Premultiplied colours over black are themselves; no sample is copied.
    for (int plane = 0; plane < 3; ++plane)
      QCOMPARE(shown->plane(plane), pictures_.pictures[2]->plane(plane));
  }

  void theOpaquePictureKeepsItsMemory() {
    const FrameRef shown = switcher_->previewPicture();
    pictures_.pictures.clear();
    QCOMPARE(difference(*shown, *opaque(noise(kSize, 2, true))).largest, 0);
  }

  void transitionsSeeOpaquePictures() {
    switcher_->take(2, 22, 1.0, 0);
    switcher_->step(12);
    QVERIFY(!switcher_->programPicture()->hasAlpha());
    switcher_->step(13);
    QCOMPARE(host_.log.mid(1), (QStringList{"position 1", "pgm 2", "pvm 1"}));
    QVERIFY(!switcher_->programPicture()->hasAlpha());
  }

  void selectingAnythingButABusIsIgnored() {
    switcher_->selectChannel(KaraokeObject, 2);
    QCOMPARE(host_.log, QStringList());
    QCOMPARE(switcher_->pgm().channel(), 1);
  }
};

QTEST_GUILESS_MAIN(SwitcherTest)
#include "tst_switcher.moc"
