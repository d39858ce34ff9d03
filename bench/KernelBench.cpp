#include "KernelBench.h"

#include <libyuv.h>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include "Report.h"
#include "engine/audio/AudioMixer.h"
#include "engine/bus/Compositor.h"
#include "engine/frame/FrameFit.h"
#include "engine/frame/FramePool.h"
#include "engine/items/text/TextPainter.h"
#include "engine/kernels/InstructionSet.h"
#include "engine/kernels/SampleKernels.h"
#include "engine/mix/TransitionCatalog.h"
#include "engine/monitor/PictureScaler.h"
#include "transitions/TransitionCatalogue.h"

using namespace korvia;

namespace {

constexpr FrameSize kSize{1920, 1080};
constexpr int kRounds = 120;
// In a show frames come from memory, not from the cache, so the bench cycles through more frames than a
// cache holds.
constexpr int kFrames = 48;

FrameRef noise(std::uint32_t seed) {
  FramePool pool(kSize);
  MutableFrame frame = pool.acquire();
  for (int plane = 0; plane < 3; ++plane)
    for (int i = 0; i < frame->stride(plane) * frame->planeHeight(plane); ++i) {
      seed = seed * 1664525 + 1013904223;
      frame->writablePlane(plane)[i] = static_cast<std::uint8_t>(16 + (seed >> 24) * 219 / 255);
    }
  return std::move(frame).publish();
}

/// Returns its frames in a cycle, the next one at each call.
template <typename Held>
class Carousel {
 public:
  explicit Carousel(std::vector<Held> frames) : frames_(std::move(frames)) {}
  auto& next() { return *frames_[++place_ % frames_.size()]; }

 private:
  std::vector<Held> frames_;
  std::size_t place_ = 0;
};

Carousel<FrameRef> pictures() {
  std::vector<FrameRef> frames;
  frames.reserve(kFrames);
  for (int i = 0; i < kFrames; ++i)
    frames.push_back(noise(static_cast<std::uint32_t>(i)));
  return Carousel<FrameRef>(std::move(frames));
}

Carousel<MutableFrame> targets() {
  std::vector<MutableFrame> frames;
  frames.reserve(kFrames);
  for (int i = 0; i < kFrames; ++i) {
    frames.emplace_back(new Frame(kSize));
    frames.back()->fillBlack();
  }
  return Carousel<MutableFrame>(std::move(frames));
}

void copy(const Frame& from, Frame& to) {
  for (int plane = 0; plane < 3; ++plane)
    libyuv::CopyPlane(from.plane(plane), from.stride(plane), to.writablePlane(plane), to.stride(plane),
                      from.planeWidth(plane), from.planeHeight(plane));
}

double milliseconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

struct Timing {
  double ms = 0;
  double copies = 0;
};

/// Kernel and copy run alternately, so that a change of the CPU clock affects both.
Timing timed(const std::function<void()>& reference, const std::function<void()>& kernel, int rounds) {
  std::vector<double> times;
  std::vector<double> ratios;
  for (int round = 0; round < rounds; ++round) {
    const double copyMs = milliseconds(reference);
    const double kernelMs = milliseconds(kernel);
    times.push_back(kernelMs);
    ratios.push_back(kernelMs / copyMs);
  }
  return {median(times), median(ratios)};
}

/// The table: printed line by line, and kept for the file.
class Table {
 public:
  void add(const char* name, const Timing& timing, const char* verdict = "") {
    std::printf("%-40s %8.3f ms %8.2f M%s\n", name, timing.ms, timing.copies, verdict);
    // Flushed, so that each line is seen at once through a pipe too.
    std::fflush(stdout);
    lines_.append(QJsonObject{{"name", name}, {"ms", timing.ms}, {"copies", timing.copies}});
  }
  void measure(const char* name, const std::function<void()>& reference,
               const std::function<void()>& kernel) {
    add(name, timed(reference, kernel, kRounds));
  }
  QJsonObject json() const { return {{"instructionSet", instructionSetName()}, {"kernels", lines_}}; }

 private:
  QJsonArray lines_;
};

struct EffectFamily {
  const char* name;
  int first;
  int last;
  double copiesMax;
  double msMax;
};
constexpr double kFrameMs = 40;
constexpr EffectFamily kFamilies[] = {
    {"wipe", 1, 20, 3, kFrameMs},   {"fade", 22, 22, 1.5, kFrameMs},  {"drop", 23, 23, 6, kFrameMs},
    {"glide", 25, 44, 4, kFrameMs}, {"stretch", 46, 51, 4, kFrameMs}, {"blur", 53, 60, 25, 8},
    {"distortion", 62, 72, 25, 8},  {"color", 74, 79, 6, kFrameMs},
};
// Positions at which nothing moves by whole samples, since those are only copied.
constexpr double kPositions[] = {0.1013, 0.3037, 0.5071, 0.7053, 0.9029};
constexpr int kRoundsAtAPosition = 24;

/// Measures each effect at several positions and reports the slowest.
void measureEffects(const QList<int>& wanted, Carousel<FrameRef>& in, Carousel<MutableFrame>& out,
                    const std::function<void()>& reference, Table& table) {
  TransitionScratch scratch;
  TransitionCatalogue catalogue;
  for (const EffectFamily& family : kFamilies)
    for (int effect = family.first; effect <= family.last; ++effect) {
      if (!wanted.isEmpty() && !wanted.contains(effect))
        continue;
      Timing slowest;
      double slowestPosition = 0;
      for (const double position : kPositions) {
        const auto kernel = [&] {
          const Frame& from = in.next();
          transitionFor(effect)->mix(from, in.next(), {position, 1}, scratch, out.next());
        };
        const Timing timing = timed(reference, kernel, kRoundsAtAPosition);
        if (timing.copies > slowest.copies) {
          slowest = timing;
          slowestPosition = position;
        }
      }
      const GListWidgetItemInfo* item = catalogue.find(effect);
      const QByteArray label = item ? item->name.toUtf8() : QByteArray();
      char name[64];
      std::snprintf(name, sizeof name, "%s %d %s at %.1f", family.name, effect, label.constData(),
                    slowestPosition);
      char verdict[24];
      std::snprintf(verdict, sizeof verdict, " of %4.1f%s", family.copiesMax,
                    slowest.copies > family.copiesMax || slowest.ms > family.msMax ? "  over" : "");
      table.add(name, slowest, verdict);
    }
}

class BenchHost final : public IShowBackendHost {
 public:
  void postResult(quint64, const QVariant&, const QVariant&, const QVariant&, const QVariant&) override {}
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }
};

/// Every channel with the same noise, loud enough for the limiter.
class NoisyChannels final : public ChannelSounds {
 public:
  NoisyChannels() : noise_(2 * kBlockSamplesMax) {
    std::uint32_t seed = 1;
    for (float& sample : noise_) {
      seed = seed * 1664525 + 1013904223;
      sample = static_cast<float>(seed >> 8) / (1 << 23) - 1;
    }
  }
  bool pullSound(int, StereoSpan piece) override {
    std::copy_n(noise_.data(), piece.samples, piece.left);
    std::copy_n(noise_.data() + kBlockSamplesMax, piece.samples, piece.right);
    return true;
  }

 private:
  std::vector<float> noise_;
};

void measureMixer(const std::function<void()>& reference, Table& table) {
  NoisyChannels channels;
  AudioMixer mixer(channels);
  BenchHost host;
  mixer.setHost(&host);
  mixer.open({25, 1});
  mixer.setMixMode(AudioMixModeAll);
  FrameTick tick;
  table.measure("mixing the sound of nine channels", reference, [&] {
    ++tick.number;
    mixer.beginTick(tick, {MediaChannel, MediaChannel + 1});
    while (mixer.mixBlock()) {
    }
  });
}

/// A line over the whole width with outline and shadow. The text changes each time, so nothing can be kept.
void measureText(const std::function<void()>& reference, Table& table) {
  constexpr double kMsMax = 10;
  TextPainter painter;
  tagKorviaShowTextInfo info;
  int number = 0;
  const auto kernel = [&] {
    info.text =
        QStringLiteral("%1 The latest news of the hour from all over the city and from the country beyond it")
            .arg(++number);
    painter.paint(info, kSize, QDateTime());
  };
  const Timing timing = timed(reference, kernel, kRounds);
  table.add("drawing a changed line of text", timing, timing.ms > kMsMax ? " of 10 ms  over" : " of 10 ms");
}

void measureAll(const QList<int>& effects, Table& table) {
  Carousel<FrameRef> in = pictures();
  Carousel<MutableFrame> out = targets();
  const auto reference = [&] { copy(in.next(), out.next()); };

  char title[40];
  std::snprintf(title, sizeof title, "kernel, 1920 x 1080, %s", instructionSetName());
  std::printf("%-40s %11s %10s\n", title, "median", "of a copy");
  table.measure("copy", reference, reference);
  measureEffects(effects, in, out, reference, table);
  if (!effects.isEmpty())
    return;
  std::vector<std::int32_t> x(kSize.width);
  std::vector<std::int32_t> y(kSize.width);
  table.measure("sampling at rotated points", reference, [&] {
    const Frame& from = in.next();
    Frame& to = out.next();
    for (int plane = 0; plane < 3; ++plane) {
      const WritablePlane target = writablePlaneOf(to, plane);
      for (int row = 0; row < target.height; ++row) {
        for (int column = 0; column < target.width; ++column) {
          x[column] = column * 250 - row * 30;
          y[column] = row * 250 + column * 30;
        }
        sampleRow(planeOf(from, plane), x.data(), y.data(), target.row(row), target.width);
      }
    }
  });
  Compositor compositor;
  QImage layer(kSize.width, kSize.height, QImage::Format_ARGB32);
  layer.fill(qRgba(255, 0, 0, 100));
  const std::vector<StackedLayer> layers{Layer::make(layer, {}, kSize)};
  const QRect quarter(kSize.width / 4, kSize.height / 4, kSize.width / 2, kSize.height / 2);
  LayerPose rotated;
  rotated.rotationDegrees = 20;
  rotated.anchorX = kSize.width / 2.0;
  rotated.anchorY = kSize.height / 2.0;
  const std::vector<StackedLayer> rotatedLayers{
      {Layer::makeMovable(layer.copy(quarter), quarter.topLeft(), kSize, quarter), rotated}};
  FramePool composed(kSize);
  std::vector<FrameRef> below;
  below.reserve(kFrames);
  for (int i = 0; i < kFrames; ++i)
    below.push_back(noise(static_cast<std::uint32_t>(i)));
  int place = 0;
  table.measure("blending a layer of full size", reference,
                [&] { compositor.over(below[++place % kFrames], layers, composed); });
  table.measure("blending a rotated layer of a quarter", reference,
                [&] { compositor.over(below[++place % kFrames], rotatedLayers, composed); });
  for (const FrameSize size : {FrameSize{296, 167}, FrameSize{544, 306}, FrameSize{912, 513}}) {
    PictureScaler scaler;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(size.width) * size.height * 4);
    char name[40];
    std::snprintf(name, sizeof name, "monitor %d x %d", size.width, size.height);
    table.measure(name, reference, [&] { scaler.toRgb(in.next(), size, pixels.data(), size.width * 4); });
  }
  measureText(reference, table);
  measureMixer(reference, table);
  const FrameSize small{1280, 720};
  FramePool smallPool(small);
  MutableFrame smallFrame = smallPool.acquire();
  smallFrame->fillBlack();
  const FrameRef picture = std::move(smallFrame).publish();
  const FrameRect rect = fitRect(small, 1, 1, kSize);
  table.measure("fit 1280 x 720", reference, [&] { fitFrame(*picture, rect, out.next()); });
}

}  // namespace

int runKernelBench(const QList<int>& effects, const QString& jsonFile) {
  Table table;
  measureAll(effects, table);
  return jsonFile.isEmpty() || writeReport(table.json(), jsonFile) ? 0 : 1;
}
