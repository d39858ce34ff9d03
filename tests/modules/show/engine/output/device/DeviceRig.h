// Program whose frames and samples have numbers, and elements that stand in for devices and keep what they
// get.
#pragma once
#include <gst/base/gstbasesink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <QString>
#include <QVector>
#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>

#include "engine/HappensBefore.h"
#include "engine/audio/StereoBlock.h"
#include "engine/frame/Frame.h"
#include "engine/source/GstInit.h"

namespace korvia::test {

inline constexpr int kNumberBits = 12;

inline int& numberOrder() {
  static int order = 0;
  return order;
}

/// The number stands in the luma as columns, so that it can be read at any size.
inline FrameRef numberedFrame(FrameSize size, int number) {
  auto* frame = new Frame(size);
  frame->fillBlack();
  for (int y = 0; y < size.height; ++y) {
    std::uint8_t* row =
        frame->writablePlane(Frame::Y) + static_cast<std::ptrdiff_t>(y) * frame->stride(Frame::Y);
    for (int x = 0; x < size.width; ++x)
      row[x] = (number >> (x * kNumberBits / size.width)) & 1 ? 235 : 16;
  }
  // The sinks read the frame on a thread of GStreamer.
  annotateHappensBefore(&numberOrder());
  return FrameRef::adopt(frame);
}

inline int numberOf(const GstVideoFrame& frame) {
  annotateHappensAfter(&numberOrder());
  const int width = GST_VIDEO_FRAME_WIDTH(&frame);
  const auto* luma = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame, 0)) +
                     GST_VIDEO_FRAME_HEIGHT(&frame) / 2 * GST_VIDEO_FRAME_COMP_STRIDE(&frame, 0);
  int number = 0;
  for (int bit = 0; bit < kNumberBits; ++bit) {
    const int x = (2 * bit + 1) * width / (2 * kNumberBits);
    number |= (luma[x * GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, 0)] > 125 ? 1 : 0) << bit;
  }
  return number;
}

/// Sound whose level tells the number of its sample, for 20 s.
inline float levelOf(double sample) {
  return static_cast<float>(sample / (20.0 * kSampleRate));
}
inline double sampleOf(float level) {
  return static_cast<double>(level) * 20.0 * kSampleRate;
}

struct SeenPicture {
  int number = 0;
  qint64 ptsNs = 0;
};

/// What the stand-ins have got, and what they are to do. One for the process.
class DeviceNotes {
 public:
  static DeviceNotes& instance() {
    static DeviceNotes notes;
    return notes;
  }

  void restart() {
    std::lock_guard lock(mutex_);
    pictures_.clear();
    sound_.clear();
    soundPtsNs_.clear();
    caps_.clear();
    properties_.clear();
    opens_ = closes_ = failures_ = 0;
    renderFails_ = false;
    soundAtOnce_ = false;
    blocked_ = false;
    changed_.notify_all();
  }

  QVector<SeenPicture> pictures() const { return locked(pictures_); }
  int pictureCount() const {
    std::lock_guard lock(mutex_);
    return pictures_.size();
  }
  QVector<int> numbers() const {
    QVector<int> all;
    for (const SeenPicture& picture : pictures())
      all.append(picture.number);
    return all;
  }
  /// Left side.
  QVector<float> sound() const { return locked(sound_); }
  /// The time of each sample.
  QVector<qint64> soundPtsNs() const { return locked(soundPtsNs_); }
  /// Of pictures, as text.
  QString caps() const { return locked(caps_); }
  /// "name=value" of each open.
  QStringList properties() const { return locked(properties_); }
  int opens() const { return locked(opens_); }
  int closes() const { return locked(closes_); }
  /// The next opens fail.
  void failOpens(int count) { set(failures_, count); }
  /// The next picture fails.
  void failRender() { set(renderFails_, true); }
  /// From now on devices hang with a picture.
  void block() { set(blocked_, true); }
  void release() { set(blocked_, false); }
  /// Sound does not wait for its time, as with a card that has a large buffer for it.
  void takeSoundAtOnce() { set(soundAtOnce_, true); }
  bool takesSoundAtOnce() const { return locked(soundAtOnce_); }
  bool isHanging() const { return locked(hanging_) > 0; }

  // The stand-ins.

  bool open(const QString& properties) {
    std::lock_guard lock(mutex_);
    if (failures_ > 0) {
      --failures_;
      return false;
    }
    ++opens_;
    properties_.append(properties);
    return true;
  }
  void close() {
    std::lock_guard lock(mutex_);
    ++closes_;
  }
  void noteCaps(const QString& caps) { set(caps_, caps); }
  bool picture(int number, qint64 ptsNs) {
    std::unique_lock lock(mutex_);
    ++hanging_;
    changed_.wait(lock, [this] { return !blocked_; });
    --hanging_;
    if (std::exchange(renderFails_, false))
      return false;
    pictures_.append({number, ptsNs});
    return true;
  }
  void soundOf(const float* left, int stride, int count, qint64 ptsNs) {
    std::lock_guard lock(mutex_);
    for (int i = 0; i < count; ++i) {
      sound_.append(left[i * stride]);
      soundPtsNs_.append(ptsNs + i * 1'000'000'000LL / kSampleRate);
    }
  }

 private:
  template <typename Value>
  Value locked(const Value& value) const {
    std::lock_guard lock(mutex_);
    return value;
  }
  template <typename Value>
  void set(Value& value, const Value& to) {
    std::lock_guard lock(mutex_);
    value = to;
    changed_.notify_all();
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;  // all below guarded by mutex_
  QVector<SeenPicture> pictures_;
  QVector<float> sound_;
  QVector<qint64> soundPtsNs_;
  QString caps_;
  QStringList properties_;
  int opens_ = 0;
  int closes_ = 0;
  int failures_ = 0;
  bool renderFails_ = false;
  bool soundAtOnce_ = false;
  bool blocked_ = false;
  int hanging_ = 0;
};

/// Registers and removes the stand-ins.
void installStandIns();
void removeStandIn(const char* element);
void installStandIn(const char* element);

}  // namespace korvia::test
