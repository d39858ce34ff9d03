// A channel's picture: its stages in order, made once a tick and only on demand, and what a cycle shows.
#include <QtTest>

#include "engine/channel/Channel.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{4, 4};

int valueOf(const FrameRef& frame) {
  return frame->plane(Frame::Y)[0];
}

/// Adds to the picture's value, and keeps count.
class Adding : public ChannelStage {
 public:
  Adding(int times, int plus, int& calls) : times_(times), plus_(plus), calls_(calls) {}
  FrameRef apply(const FrameRef& picture, ChannelPictures&) override {
    ++calls_;
    return flat(kSize, valueOf(picture) * times_ + plus_);
  }

 private:
  int times_;
  int plus_;
  int& calls_;
};

/// Adds another channel's value to the picture's.
class Showing : public ChannelStage {
 public:
  explicit Showing(int other) : other_(other) {}
  FrameRef apply(const FrameRef& picture, ChannelPictures& others) override {
    return flat(kSize, valueOf(picture) + valueOf(others.picture(other_)));
  }

 private:
  int other_;
};

class Channels final : public ChannelPictures {
 public:
  FrameRef picture(int id) override { return channels[static_cast<std::size_t>(id)].picture(*this, black); }
  void beginTick(std::array<int, 3> values) {
    for (std::size_t i = 0; i < channels.size(); ++i)
      channels[i].beginTick(flat(kSize, values[i]));
  }

  std::array<Channel, 3> channels;
  FrameRef black = flat(kSize, 0);
};

}  // namespace

class ChannelTest : public QObject {
  Q_OBJECT

 private slots:
  void withoutStagesTheSourcesPictureGoesThrough() {
    Channels all;
    const FrameRef picture = flat(kSize, 7);
    all.channels[0].beginTick(picture);
    QVERIFY(all.picture(0) == picture);
    all.channels[0].beginTick({});
    QVERIFY(all.picture(0) == all.black);
  }

  void stagesWorkInTheirOrder() {
    Channels all;
    int calls = 0;
    Channel& channel = all.channels[0];
    channel.setStage(Channel::Stage::Background, std::make_unique<Adding>(2, 0, calls));
    channel.setStage(Channel::Stage::Look, std::make_unique<Adding>(1, 1, calls));
    channel.setStage(Channel::Stage::Key, std::make_unique<Adding>(3, 0, calls));
    all.beginTick({5, 0, 0});
    QCOMPARE(valueOf(all.picture(0)), (5 + 1) * 3 * 2);
    QVERIFY(channel.setStage(Channel::Stage::Key, nullptr));
    all.beginTick({5, 0, 0});
    QCOMPARE(valueOf(all.picture(0)), (5 + 1) * 2);
  }

  void aPictureIsMadeOnceATickAndOnlyOnDemand() {
    Channels all;
    int calls = 0;
    all.channels[0].setStage(Channel::Stage::Look, std::make_unique<Adding>(1, 1, calls));
    all.channels[1].setStage(Channel::Stage::Background, std::make_unique<Showing>(0));
    all.beginTick({1, 2, 3});
    all.beginTick({1, 2, 3});
    QCOMPARE(calls, 0);
    const FrameRef picture = all.picture(0);
    QVERIFY(all.picture(0) == picture);
    QCOMPARE(valueOf(all.picture(1)), 2 + 2);
    QCOMPARE(calls, 1);
    all.beginTick({1, 2, 3});
    QVERIFY(all.picture(0) != picture);
    QCOMPARE(calls, 2);
  }

  void aCycleShowsTheTickBefore() {
    Channels all;
    all.channels[0].setStage(Channel::Stage::Background, std::make_unique<Showing>(1));
    all.channels[1].setStage(Channel::Stage::Background, std::make_unique<Showing>(0));
    all.beginTick({1, 10, 0});
    // Channel 0 asks channel 1, which asks channel 0: there is no tick before, so that is black.
    QCOMPARE(valueOf(all.picture(0)), 1 + 10 + 0);
    QCOMPARE(valueOf(all.picture(1)), 10 + 0);
    all.beginTick({1, 10, 0});
    QCOMPARE(valueOf(all.picture(0)), 1 + 10 + 11);
    QCOMPARE(valueOf(all.picture(1)), 10 + 11);
  }

  void aChannelThatShowsItselfShowsTheTickBefore() {
    Channels all;
    all.channels[2].setStage(Channel::Stage::Background, std::make_unique<Showing>(2));
    for (int tick = 1; tick <= 3; ++tick) {
      all.beginTick({0, 0, 4});
      QCOMPARE(valueOf(all.picture(2)), 4 * tick);
    }
    all.channels[2].clear();
    all.beginTick({0, 0, 4});
    QCOMPARE(valueOf(all.picture(2)), 4);
  }
};

QTEST_GUILESS_MAIN(ChannelTest)
#include "tst_channel.moc"
