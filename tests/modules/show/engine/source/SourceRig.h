// Drives a source as the engine and the console do: opens it by its record, pulls pictures tick by tick,
// keeps what the source tells and logs.
#pragma once
#include <QFile>
#include <QtTest>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/source/SourceFactory.h"
#include "engine/source/SourceThreads.h"

namespace korvia::test {

inline constexpr int kNumberBits = 16;

/// The number in the upper quarter of a picture of the numbered clips; -1 for no picture.
inline int numberIn(const FrameRef& frame) {
  if (!frame)
    return -1;
  const int block = frame->width() / kNumberBits;
  const std::uint8_t* row = frame->plane(Frame::Y) + frame->height() / 10 * frame->stride(Frame::Y);
  int number = 0;
  for (int bit = 0; bit < kNumberBits; ++bit)
    number |= row[bit * block + block / 2] > 125 ? 1 << bit : 0;
  return number;
}

/// Y, U, V at a place given in luma samples.
inline QVector<int> codesAt(const FrameRef& frame, int x, int y) {
  if (!frame)
    return {};
  return {frame->plane(Frame::Y)[y * frame->stride(Frame::Y) + x],
          frame->plane(Frame::U)[y / 2 * frame->stride(Frame::U) + x / 2],
          frame->plane(Frame::V)[y / 2 * frame->stride(Frame::V) + x / 2]};
}

inline bool isNear(const QVector<int>& codes, const QVector<int>& expected, int tolerance) {
  if (codes.size() != expected.size())
    return false;
  for (int i = 0; i < codes.size(); ++i) {
    if (std::abs(codes[i] - expected[i]) > tolerance)
      return false;
  }
  return true;
}

inline QByteArray text(const QVector<int>& codes) {
  QByteArray line;
  for (int code : codes)
    line += QByteArray::number(code) + ' ';
  return line;
}

class NotifySink final : public IKorviaShowEngineSink {
 public:
  struct Notify {
    int id, what, param;
  };

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  void onAudioData(KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int) override {}
  QImage lockBackground(KorviaShowObjectID) override { return {}; }
  void unlockBackground(KorviaShowObjectID, QImage&) override {}
  void onSourceNotify(KorviaShowObjectID id, int what, int param) override {
    std::lock_guard lock(mutex_);
    notifies_.push_back({id, what, param});
  }
  std::vector<Notify> notifies() {
    std::lock_guard lock(mutex_);
    return notifies_;
  }

 private:
  std::mutex mutex_;
  std::vector<Notify> notifies_;  // guarded by mutex_
};

/// Keeps the lines that "korvia.source" warns with.
class WarningKeeper {
 public:
  WarningKeeper() {
    keeper() = this;
    previous_ = qInstallMessageHandler(handle);
  }
  ~WarningKeeper() {
    qInstallMessageHandler(previous_);
    keeper() = nullptr;
  }
  QStringList lines() {
    std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  static WarningKeeper*& keeper() {
    static WarningKeeper* instance = nullptr;
    return instance;
  }
  static void handle(QtMsgType type, const QMessageLogContext& context, const QString& line) {
    WarningKeeper* self = keeper();
    if (type == QtWarningMsg && qstrcmp(context.category, "korvia.source") == 0) {
      std::lock_guard lock(self->mutex_);
      self->lines_ += line;
    } else if (self->previous_) {
      self->previous_(type, context, line);
    }
  }

  std::mutex mutex_;
  QStringList lines_;  // guarded by mutex_
  QtMessageHandler previous_ = nullptr;
};

class SourceRig {
 public:
  explicit SourceRig(FrameSize size = {320, 180}, int rate = 25) {
    context_.id = static_cast<KorviaShowObjectID>(MediaChannel + 3);
    context_.renderSize = size;
    context_.rate.numerator = rate;
    context_.sink = &sink_;
  }
  ~SourceRig() {
    close();
    waitForClosedSources(10'000);
  }

  void openFilm(const QString& path, KorviaShowEndAction endAction = EndActionLoop, int switchChannel = 0) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindMovie;
    info.moviePath = path;
    info.movieEndAction = endAction;
    info.movieSwitchChannel = switchChannel;
    open(info);
  }
  void openFilmList(const QStringList& paths, KorviaShowEndAction endAction = EndActionLoop,
                    int switchChannel = 0) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindMovieList;
    info.movieList = paths;
    info.listEndAction = endAction;
    info.listSwitchChannel = switchChannel;
    open(info);
  }
  void open(const tagKorviaShowSourceInfo& info, const tagKorviaFormatInfo& format = {}) {
    source_ = createSource(context_, info, format);
  }
  void open(std::shared_ptr<Source> source) { source_ = std::move(source); }
  const SourceContext& context() const { return context_; }
  void close() {
    if (source_)
      source_->close();
  }
  void drop() { source_.reset(); }

  Source* operator->() { return source_.get(); }
  NotifySink& sink() { return sink_; }

  /// One tick, once the decoder is ahead or has nothing more to give. A film waits for its first sound too;
  /// ticks before that do not move its clock and are not counted.
  FrameRef tick() {
    waitUpTo(std::chrono::milliseconds(200), [&] { return source_->figures().framesQueued >= 2; });
    FrameRef frame = source_->pullFrame(1);
    waitUpTo(std::chrono::seconds(10), [&] {
      if (!frame && source_->figures().framesQueued > 0)
        frame = source_->pullFrame(1);
      return frame || source_->figures().framesQueued == 0;
    });
    return frame;
  }

  /// Ticks until the state is there; false after `seconds`.
  bool tickUntil(KorviaShowPlayState state, double seconds = 10) {
    return tickUntil([&] { return source_->getPlayState() == state; }, seconds);
  }
  template <typename Condition>
  bool tickUntil(Condition condition, double seconds = 10) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end)
        return false;
      last_ = source_->pullFrame(1);
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
  }
  /// The picture of the last tick of tickUntil.
  const FrameRef& last() const { return last_; }

  bool tickUntilPicture(int number) {
    return tickUntil([&] { return numberIn(last_) == number; });
  }
  float linkRate() {
    tagKorviaSourceLinkState state;
    source_->getState(state);
    return state.rate;
  }
  QString failureReason() {
    tagKorviaSourceLinkState state;
    source_->getState(state);
    return state.reason;
  }
  qint64 position() {
    qint64 value = -1;
    source_->getPosition(value);
    return value;
  }
  qint64 timeMs() {
    qint64 value = -1;
    source_->getTime(value);
    return value / 10;
  }
  qint64 durationMs() {
    qint64 value = -1;
    source_->getDuration(value);
    return value / 10;
  }

 private:
  template <typename Condition>
  static void waitUpTo(std::chrono::milliseconds limit, Condition condition) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition() && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  SourceContext context_;
  NotifySink sink_;
  std::shared_ptr<Source> source_;
  FrameRef last_;
};

}  // namespace korvia::test
