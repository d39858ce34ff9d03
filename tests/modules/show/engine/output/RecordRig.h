// Records counted frames as quickly as they are taken, and reads the numbers back.
#pragma once
#include <QDeadlineTimer>
#include <QThread>
#include <QVector>
#include <cmath>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <numeric>
#include <vector>

#include "engine/Janitor.h"
#include "engine/output/FileTarget.h"
#include "engine/output/OutputSlot.h"
#include "support/TestPattern.h"

namespace korvia::test {

struct RecordingSettings {
  FileSettings file;
  EncoderSettings encoder;
};

/// A slot with one file, as the engine makes it for a recording.
class Recording {
 public:
  explicit Recording(const RecordingSettings& settings)
      : file_(std::make_shared<FileTarget>(settings.file)),
        slot_(settings.encoder, OutputSlot::Targets{file_}, janitor_) {}

  OutputSlot& slot() { return slot_; }
  void pushFrame(const FrameRef& frame) { slot_.encoder()->pushFrame(frame); }
  void finish() { slot_.finish(); }
  bool waitFinished(int timeoutMs) { return slot_.waitFinished(timeoutMs); }
  OutputFigures figures() const { return slot_.figures(); }
  QString fileName() const { return file_->fileName(); }

 private:
  Janitor janitor_;
  std::shared_ptr<FileTarget> file_;
  OutputSlot slot_;
};

/// Waits until fewer than `limit` of the `pushed` frames are still on their way to the targets; false when
/// the output has ended and after ten seconds.
template <typename Output>
bool waitForRoom(Output& output, qint64 pushed, int limit) {
  const QDeadlineTimer deadline(10000);
  while (pushed - output.figures().framesEncoded >= limit) {
    if (deadline.hasExpired() || output.waitFinished(0))
      return false;
    QThread::usleep(500);
  }
  return true;
}

/// With silence, for an output that takes sound.
template <typename Output>
bool feedFrames(Output& output, FramePool& pool, int first, int count) {
  std::vector<float> silence(kSampleRate / 25);
  for (int i = 0; i < count; ++i) {
    if constexpr (requires { output.encoder(); }) {
      output.encoder()->pushFrame(patternFrame(pool, first + i));
      output.encoder()->pushSound({silence.data(), silence.data(), static_cast<int>(silence.size())});
    } else {
      output.pushFrame(patternFrame(pool, first + i));
    }
    if (!waitForRoom(output, first + i + 1, 15))
      return false;
  }
  return true;
}

/// While shut, a thread that wants to pass hangs.
class Gate {
 public:
  void open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  void pass() {
    std::unique_lock lock(mutex_);
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
  }
  bool waitReached() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return reached_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  bool reached_ = false;
};

/// A picture with the number 0, at whose gate the thread hangs that drops it last.
inline FrameRef gatedFrame(Gate& gate, FrameSize size) {
  struct Held {
    Gate& gate;
    std::vector<std::uint8_t> pixels;
  };
  auto* held =
      new Held{gate, std::vector<std::uint8_t>(static_cast<std::size_t>(size.width) * size.height, 16)};
  Frame::External external;
  for (int plane = 0; plane < 3; ++plane) {
    external.data[plane] = held->pixels.data();
    external.stride[plane] = size.width;
  }
  external.opaque = held;
  external.release = [](void* opaque) {
    const std::unique_ptr<Held> mine(static_cast<Held*>(opaque));
    mine->gate.pass();
  };
  return FrameRef::adopt(new Frame(size, external));
}

/// Of pictures of 8-bit luma, one behind the other.
inline QVector<int> numbersIn(const QByteArray& luma, FrameSize size) {
  QVector<int> numbers;
  const int bytes = size.width * size.height;
  for (int at = 0; at + bytes <= luma.size(); at += bytes)
    numbers.append(patternNumber(reinterpret_cast<const std::uint8_t*>(luma.constData()) + at, size.width));
  return numbers;
}

/// The numbers from `first` to before `end`.
inline QVector<int> countFrom(int first, int end) {
  QVector<int> numbers(end - first);
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

inline QVector<int> countTo(int count) {
  return countFrom(0, count);
}

/// Whether packet i has the time index(i) × step after the first, to the microsecond.
inline bool areSpaced(const QVector<double>& pts, double step, const QVector<int>& indices) {
  if (pts.size() != indices.size())
    return false;
  for (int i = 0; i < pts.size(); ++i) {
    if (std::abs(pts[i] - pts[0] - step * (indices[i] - indices[0])) > 2e-6)
      return false;
  }
  return true;
}

}  // namespace korvia::test
