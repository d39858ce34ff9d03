// Peaks as levels, and how they fall.
#include <QtTest>
#include <cmath>

#include "engine/audio/LevelMeter.h"

using namespace korvia;

namespace {

constexpr int kSamples = 1920;

/// The level of a side for a peak in dBFS.
float levelOf(double db) {
  return static_cast<float>((db + 60) / 60 * 100);
}

/// Half a decibel.
bool isNear(float got, float expected) {
  return std::abs(got - expected) <= 0.5F / 60 * 100;
}

}  // namespace

class LevelMeterTest : public QObject {
  Q_OBJECT

 private:
  LevelMeter meter_;
  std::vector<float> left_ = std::vector<float>(kSamples);
  std::vector<float> right_ = std::vector<float>(kSamples);

  void addTone(double leftDb, double rightDb) {
    for (int i = 0; i < kSamples; ++i) {
      const double sine = std::sin(2 * 3.14159265 * 997 * i / kSampleRate);
      left_[i] = static_cast<float>(sine * std::pow(10, leftDb / 20));
      right_[i] = static_cast<float>(sine * std::pow(10, rightDb / 20));
    }
    meter_.add({left_.data(), right_.data(), kSamples});
  }

 private slots:
  void init() { meter_.reset(); }

  void tonesHaveTheirLevels() {
    for (const double db : {-50.0, -20.0, -6.0, -1.0, 0.0}) {
      addTone(db, db - 3);
      QVERIFY(isNear(meter_.level().left, levelOf(db)));
      QVERIFY(isNear(meter_.level().right, levelOf(db - 3)));
    }
  }

  void theScaleHasEnds() {
    QCOMPARE(meter_.level(), (tagKorviaShowAudioLevel::Pair{0, 0}));
    addTone(-90, 12);
    QCOMPARE(meter_.level().left, 0.0F);
    QCOMPARE(meter_.level().right, 100.0F);
  }

  void theLevelFallsSlowly() {
    addTone(-10, -40);
    // 20 dB a second: 25 blocks of 40 ms.
    for (int i = 0; i < 25; ++i)
      meter_.addSilence(kSamples);
    QVERIFY(isNear(meter_.level().left, levelOf(-30)));
    QVERIFY(isNear(meter_.level().right, 0));
    // A louder block is shown at once, a less loud one is not.
    addTone(-45, -5);
    QVERIFY(isNear(meter_.level().left, levelOf(-30.8)));
    QVERIFY(isNear(meter_.level().right, levelOf(-5)));
  }
};

QTEST_GUILESS_MAIN(LevelMeterTest)
#include "tst_level_meter.moc"
