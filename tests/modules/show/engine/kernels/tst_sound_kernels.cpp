// The sound kernels against their formulas, for every length to 70 and odd starts; nothing past the end may
// change.
#include <QtTest>
#include <cmath>
#include <limits>

#include "engine/kernels/SoundKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

constexpr int kLength = 160;
constexpr float kUntouched = 99;
constexpr double kPi = 3.14159265358979323846;

/// Samples from -1 to 1.
std::vector<float> noise(std::uint32_t seed, int count = kLength) {
  std::vector<float> samples(static_cast<std::size_t>(count));
  for (float& sample : samples) {
    seed = seed * 1664525 + 1013904223;
    sample = static_cast<float>(seed >> 8) / (1 << 23) - 1;
  }
  return samples;
}

bool isNear(float got, double expected) {
  return std::abs(got - expected) <= 1e-6;
}

struct Gains {
  float from;
  float to;
};
constexpr Gains kGains[] = {{1, 1}, {0, 1}, {1, 0}, {0.25F, 0.75F}, {0.5F, 0.5F}};

double rampedGain(Gains gains, int sample, int count) {
  return gains.from + (double{gains.to} - gains.from) * (sample + 1) / count;
}

}  // namespace

class SoundKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void scalingFollowsItsRamp() {
    const std::vector<float> in = noise(1);
    for (int count = 0; count <= 70; ++count)
      for (int start = 0; start < 3; ++start)
        for (const Gains gains : kGains) {
          std::vector<float> out = in;
          scaleRamped(out.data() + start, gains.from, gains.to, count);
          for (int i = 0; i < kLength; ++i) {
            const bool inside = i >= start && i < start + count;
            const double gain = inside ? rampedGain(gains, i - start, count) : 1;
            QVERIFY(isNear(out[i], in[i] * gain));
          }
        }
  }

  void aGainOfOneChangesNothing() {
    const std::vector<float> in = noise(2);
    std::vector<float> out = in;
    scaleRamped(out.data(), 1, 1, kLength);
    QCOMPARE(out, in);
  }

  void addingFollowsItsRamp() {
    const std::vector<float> in = noise(3);
    const std::vector<float> under = noise(4);
    for (int count = 0; count <= 70; ++count)
      for (int start = 0; start < 3; ++start)
        for (const Gains gains : kGains) {
          std::vector<float> out = under;
          addRamped(in.data() + 2 * start, gains.from, gains.to, out.data() + start, count);
          for (int i = 0; i < kLength; ++i) {
            const bool inside = i >= start && i < start + count;
            const double added = inside ? in[i + start] * rampedGain(gains, i - start, count) : 0;
            QVERIFY(isNear(out[i], under[i] + added));
          }
        }
  }

  void thePeakIsFoundAtEveryPlace() {
    for (int count = 0; count <= 70; ++count)
      for (int place = 0; place < count; ++place) {
        std::vector<float> samples(kLength, 0.125F);
        samples[place] = place % 2 ? 0.5F : -0.5F;
        samples[count] = 2;
        QCOMPARE(peakOf(samples.data(), count), 0.5F);
      }
    QCOMPARE(peakOf(nullptr, 0), 0.0F);
  }

  void whatIsNoNumberShowsInThePeak() {
    for (const int place : {0, 3, 16, 66}) {
      std::vector<float> samples = noise(5);
      samples[place] = std::numeric_limits<float>::infinity();
      QVERIFY(std::isinf(peakOf(samples.data(), 67)));
      samples[place] = -std::numeric_limits<float>::quiet_NaN();
      QVERIFY(std::isnan(peakOf(samples.data(), 67)));
    }
  }

  void peaksBetweenSamplesFollowTheirFormula() {
    const std::vector<float> in = noise(6);
    for (int count = 0; count <= 70; ++count) {
      std::vector<float> peaks(kLength, 0);
      peaks[0] = count > 0 ? 7.0F : 0.0F;
      peaks[count] = kUntouched;
      interpolatedPeaks(in.data() + kInterpolationReach, peaks.data(), count);
      for (int i = 1; i < count; ++i) {
        double most = 0;
        for (int quarter = 0; quarter <= 4; ++quarter) {
          double sum = 0;
          for (int k = -5; k <= 6; ++k) {
            const double distance = k - quarter / 4.0;
            const double sinc = distance == 0 ? 1 : std::sin(kPi * distance) / (kPi * distance);
            if (std::abs(distance) < 6)
              sum += in[kInterpolationReach + i + k] * sinc * (1 + std::cos(kPi * distance / 6)) / 2;
          }
          most = std::max(most, std::abs(sum));
        }
        QVERIFY2(isNear(peaks[i], most), qPrintable(QString("%1 for %2").arg(peaks[i]).arg(most)));
      }
      // Larger peaks that are there already stay.
      if (count > 0)
        QCOMPARE(peaks[0], 7.0F);
      QCOMPARE(peaks[count], kUntouched);
    }
  }

  void thePeakOfASineBetweenItsSamplesIsFound() {
    // A quarter of the sampling rate, sampled 45 degrees beside its peaks: no sample is above 0.7071.
    std::vector<float> in(kLength);
    for (int i = 0; i < kLength; ++i)
      in[i] = static_cast<float>(std::sin(kPi / 2 * i + kPi / 4));
    std::vector<float> peaks(100, 0);
    interpolatedPeaks(in.data() + kInterpolationReach, peaks.data(), 100);
    // Every other interval has a peak.
    for (int i = 0; i + 1 < 100; ++i)
      QVERIFY(std::abs(std::max(peaks[i], peaks[i + 1]) - 1) < 0.01);
  }

  void interleavingRoundsAndLimits() {
    std::vector<float> left = noise(7);
    const std::vector<float> right = noise(8);
    left[0] = left[20] = 1.5F;
    left[1] = left[21] = -3;
    left[2] = left[22] = 1;
    for (int count = 0; count <= 70; ++count) {
      std::vector<std::int16_t> out(2 * kLength, 99);
      interleave16(left.data(), right.data(), out.data(), count);
      for (int i = 0; i < count; ++i) {
        QVERIFY(qAbs(out[2 * i] - qBound(-1.0F, left[i], 1.0F) * 32767) <= 0.51);
        QVERIFY(qAbs(out[2 * i + 1] - right[i] * 32767) <= 0.51);
      }
      QCOMPARE(int(out[2 * count]), 99);
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<SoundKernelsTest>(argc, argv);
}

#include "tst_sound_kernels.moc"
