// The sounds of a page become one.
#include "page/SoundMix.h"

#include <QtTest>
#include <vector>

using korvia::SoundMix;

namespace {

constexpr std::int64_t kMs = 1'000'000;
constexpr int kFramesPerMs = 48;

struct Taken {
  std::vector<float> left;
  std::vector<std::int64_t> stamps;
};

std::vector<float> tone(int ms, float value) {
  return std::vector<float>(static_cast<std::size_t>(ms * kFramesPerMs * 2), value);
}

}  // namespace

class tst_sound_mix : public QObject {
  Q_OBJECT

 private slots:
  void oneStreamPassesWithoutGaps() {
    Taken taken;
    SoundMix mix(takerOf(taken));
    // Arrivals jitter by a few milliseconds.
    for (int i = 0; i < 10; ++i)
      add(mix, &taken, 20, 0.5F, 1000 + i * 20 + i % 3 * 4);
    mix.flush(2000 * kMs);
    QCOMPARE(taken.left.size(), std::size_t(200 * kFramesPerMs));
    QVERIFY(std::all_of(taken.left.begin(), taken.left.end(), [](float value) { return value == 0.5F; }));
    QCOMPARE(taken.stamps.front(), 1000 * kMs);
  }

  void streamsAddUp() {
    Taken taken;
    SoundMix mix(takerOf(taken));
    int other = 0;
    add(mix, &taken, 30, 0.25F, 1000);
    add(mix, &other, 30, 0.5F, 1010);
    mix.flush(2000 * kMs);
    QCOMPARE(taken.left.size(), std::size_t(40 * kFramesPerMs));
    QCOMPARE(taken.left[5 * kFramesPerMs], 0.25F);
    QCOMPARE(taken.left[15 * kFramesPerMs], 0.75F);
    QCOMPARE(taken.left[35 * kFramesPerMs], 0.5F);
  }

  void silenceBetweenSoundsIsKept() {
    Taken taken;
    SoundMix mix(takerOf(taken));
    add(mix, &taken, 20, 0.5F, 1000);
    mix.flush(1500 * kMs);
    QCOMPARE(taken.left.size(), std::size_t(20 * kFramesPerMs));
    add(mix, &taken, 20, 0.5F, 3000);
    mix.flush(3500 * kMs);
    QCOMPARE(taken.left.size(), std::size_t(40 * kFramesPerMs));
    QCOMPARE(taken.stamps.back(), 3000 * kMs);
  }

  void wrongStampsDoNotFillTheMemory() {
    Taken taken;
    SoundMix mix(takerOf(taken));
    add(mix, &taken, 20, 0.5F, 1000);
    int other = 0;
    add(mix, &other, 20, 0.5F, 900'000);
    mix.flush(1'000'000 * kMs);
    QVERIFY(taken.left.size() <= std::size_t(1000 * kFramesPerMs));
  }

 private:
  static SoundMix::Taker takerOf(Taken& taken) {
    return [&taken](const float* samples, int frames, std::int64_t stampNs) {
      taken.stamps.push_back(stampNs);
      for (int i = 0; i < frames; ++i)
        taken.left.push_back(samples[i * 2]);
    };
  }
  static void add(SoundMix& mix, const void* stream, int ms, float value, std::int64_t atMs) {
    const std::vector<float> samples = tone(ms, value);
    mix.add(stream, samples.data(), ms * kFramesPerMs, atMs * kMs);
  }
};

QTEST_GUILESS_MAIN(tst_sound_mix)
#include "tst_sound_mix.moc"
