// A source of pictures and sound: a film, a still or a colour. The engine thread pulls one frame a tick, the
// console thread calls the functions of IKorviaShowSource, and slow work is done on the source's own threads.
// The base owns the record and the format. Its defaults are those of a source with one item, without
// duration, whose buttons do nothing.
#pragma once
#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>

#include "FrameRate.h"
#include "IKorviaShowEngineSink.h"
#include "IKorviaShowSource.h"
#include "RefillTurns.h"
#include "SourceTap.h"
#include "engine/audio/StereoSpan.h"
#include "engine/frame/Frame.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowSourceInfo.h"

namespace korvia {

/// Larger pictures are not read, whatever size a file states.
inline constexpr std::int64_t kMostPixels = 64 * 1024 * 1024;

/// What a source must know of the show. Fixed for the life of the source.
struct SourceContext {
  KorviaShowObjectID id = SourceObject;
  FrameSize renderSize;
  FrameRate rate;  ///< of the render
  /// Of the income server on this machine; 0 while it is not known. Never null in a show.
  std::shared_ptr<const std::atomic<int>> incomePort;
  /// Shared by all films of the show; null for a film that decodes when it likes.
  std::shared_ptr<RefillTurns> refillTurns;
  /// May be null. Its onSourceNotify may be called from any thread of the source.
  IKorviaShowEngineSink* sink = nullptr;
};

/// The rate for getState(): what arrives, or the nominal rate while nothing is meant to arrive or the source
/// still opens. The restart watchdog starts a source whose rate is too low, and must leave such a source
/// alone.
inline float linkRate(KorviaShowPlayState state, float received, float nominal) {
  return state == Opening || state == Paused || state == Stopped ? nominal : received;
}

/// Reduced leaves out the pictures that no other one refers to, as far as the decoder can, to save time.
enum class DecodeRate { Full, Reduced };

struct SourceFigures {
  QString description;
  qint64 framesDecoded = 0;
  qint64 framesQueued = 0;   ///< pictures that wait to be shown
  qint64 samplesQueued = 0;  ///< sound that waits to be heard, in samples of one channel
  qint64 framesHeld = 0;     ///< ticks without a new picture while playing
  /// Pictures that were never shown, because another one was due in the same tick.
  qint64 framesSkipped = 0;
  float framesPerSecond = 0;     ///< pictures that arrive
  float samplesPerSecond = 0;    ///< sound that arrives, in samples of one channel
  qint64 videoAudioDriftMs = 0;  ///< time stamp of the picture less that of the sound
  tagKorviaShowEngineFigures::LiveSource live;
};

class Source : public IKorviaShowSource {
 public:
  virtual ~Source() = default;

  /// The picture for this tick in the render size, or null for black. `ticks` is 1 plus the frames missed
  /// since the last call. Never blocks. Engine thread.
  virtual FrameRef pullFrame(int ticks) = 0;
  /// The sound of the tick of the last pullFrame(); false, with nothing written, for silence. The sound of a
  /// tick may be asked for in several pieces, one after the other. Never blocks. Engine thread.
  virtual bool pullSound(StereoSpan) { return false; }
  /// As in figures(). Any thread; without allocation.
  virtual std::int64_t framesHeld() const { return 0; }
  /// What takes the picture and the sound of another source for this one; null for a source that needs none.
  /// Always the same. Engine thread.
  virtual SourceTap* tap() { return nullptr; }
  /// How many of its pictures are needed from now on. Engine thread.
  virtual void setDecodeRate(DecodeRate) {}
  /// Begins to close and returns at once. No notify comes after it. Console thread.
  virtual void close() = 0;
  virtual SourceFigures figures() { return {}; }

  KorviaShowObjectID getObjectId() override { return context_.id; }
  int* getSourceInfo() override { return &info_.kind; }
  const tagKorviaFormatInfo* getFormat() override { return &format_; }
  void getState(tagKorviaSourceLinkState& state) override { state.rate = 0; }
  void play() override {}
  void stop() override {}
  void pause() override {}
  void setHold(bool) override {}
  void prev() override {}
  void next() override {}
  void getDuration(qint64& duration) override { duration = 0; }
  void getTime(qint64& time) override { time = 0; }
  void getFrameCount(qint64& frames) override { frames = 0; }
  void getPosition(qint64& position) override { position = 0; }
  void setPosition(qint64) override {}
  int getPlayState() override { return NothingSpecial; }
  int getItemCount() override { return 1; }
  int getItemIndex() override { return 0; }

  // A source belongs to the engine, so release() by a holder does nothing.
  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }

 protected:
  Source(const SourceContext& context, const tagKorviaShowSourceInfo& info, const tagKorviaFormatInfo& format)
      : context_(context), info_(info), format_(format) {}

  const SourceContext& context() const { return context_; }
  const tagKorviaShowSourceInfo& info() const { return info_; }

 private:
  const SourceContext context_;
  tagKorviaShowSourceInfo info_;  // not const, because the console gets a pointer to write through
  const tagKorviaFormatInfo format_;
};

}  // namespace korvia
