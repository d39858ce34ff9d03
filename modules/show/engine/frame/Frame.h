// A picture: planar 4:2:0, 8 bit, BT.709 limited range, with an optional full-size alpha plane. Colours are
// premultiplied: without regard to alpha, planes Y, U and V are the picture over black.
// Written by one thread before it is published as a FrameRef, immutable and shared between threads after.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace korvia {

struct FrameSize {
  int width = 0;
  int height = 0;

  int chromaWidth() const { return (width + 1) / 2; }
  int chromaHeight() const { return (height + 1) / 2; }
  bool isEmpty() const { return width <= 0 || height <= 0; }
  friend bool operator==(const FrameSize& a, const FrameSize& b) {
    return a.width == b.width && a.height == b.height;
  }
  friend bool operator!=(const FrameSize& a, const FrameSize& b) { return !(a == b); }
};

/// Whether a frame has a plane for alpha. Without one it is opaque.
enum class FrameAlpha { None, Plane };

struct FramePoolState;

class Frame {
 public:
  enum Plane { Y = 0, U = 1, V = 2, A = 3 };

  /// External memory; `release(opaque)` is called once, on the thread that drops the last reference.
  struct External {
    const std::uint8_t* data[4] = {};
    int stride[4] = {};
    void (*release)(void* opaque) = nullptr;
    void* opaque = nullptr;
  };

  explicit Frame(FrameSize size, FrameAlpha alpha = FrameAlpha::None);
  Frame(FrameSize size, const External& external);
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  ~Frame();

  FrameSize size() const { return size_; }
  int width() const { return size_.width; }
  int height() const { return size_.height; }
  bool hasAlpha() const { return data_[A] != nullptr; }
  FrameAlpha alpha() const { return hasAlpha() ? FrameAlpha::Plane : FrameAlpha::None; }
  const std::uint8_t* plane(int plane) const { return data_[plane]; }
  /// Only before the frame is published, and never for external memory.
  std::uint8_t* writablePlane(int plane) { return data_[plane]; }
  /// Bytes from one row to the next.
  int stride(int plane) const { return stride_[plane]; }
  int planeWidth(int plane) const { return plane == U || plane == V ? size_.chromaWidth() : size_.width; }
  int planeHeight(int plane) const { return plane == U || plane == V ? size_.chromaHeight() : size_.height; }

  /// Black in limited range; alpha opaque. Only before the frame is published.
  void fillBlack();

 private:
  friend class FrameRef;
  friend class MutableFrame;
  friend class FramePool;
  friend struct FramePoolState;

  FrameSize size_;
  std::uint8_t* data_[4] = {};
  int stride_[4] = {};
  std::unique_ptr<std::uint8_t, void (*)(void*)> memory_;
  External external_;
  std::atomic<int> references_{0};
  std::shared_ptr<FramePoolState> home_;  // set while in use, so that a frame may outlive its pool

  void drop();
};

/// Shared hold on an immutable frame; null means "no picture". Cheap to copy, any thread.
class FrameRef {
 public:
  FrameRef() = default;
  FrameRef(const FrameRef& other) : frame_(other.frame_) { retain(); }
  FrameRef(FrameRef&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
  FrameRef& operator=(FrameRef other) noexcept {
    std::swap(frame_, other.frame_);
    return *this;
  }
  ~FrameRef() { reset(); }

  /// Takes a frame made with `new` that is complete.
  static FrameRef adopt(Frame* frame) {
    FrameRef ref;
    ref.frame_ = frame;
    ref.retain();
    return ref;
  }

  void reset();
  const Frame* get() const { return frame_; }
  const Frame* operator->() const { return frame_; }
  const Frame& operator*() const { return *frame_; }
  explicit operator bool() const { return frame_ != nullptr; }
  friend bool operator==(const FrameRef& a, const FrameRef& b) { return a.frame_ == b.frame_; }
  friend bool operator!=(const FrameRef& a, const FrameRef& b) { return a.frame_ != b.frame_; }

 private:
  void retain() {
    if (frame_)
      frame_->references_.fetch_add(1, std::memory_order_relaxed);
  }
  Frame* frame_ = nullptr;
};

/// The only writer of a frame that is not published yet.
class MutableFrame {
 public:
  MutableFrame() = default;
  explicit MutableFrame(Frame* frame) : frame_(frame) {}
  MutableFrame(MutableFrame&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
  MutableFrame& operator=(MutableFrame&& other) noexcept {
    std::swap(frame_, other.frame_);
    return *this;
  }
  ~MutableFrame() {
    if (frame_)
      std::move(*this).publish();
  }

  Frame* operator->() { return frame_; }
  Frame& operator*() { return *frame_; }
  /// Ends writing; the frame is immutable from here on.
  FrameRef publish() &&;

 private:
  Frame* frame_ = nullptr;
};

}  // namespace korvia
