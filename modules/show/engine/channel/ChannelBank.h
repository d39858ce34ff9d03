// All channels and their sources. Console thread: opening, closing and asking for sources; engine thread: the
// pictures and the sound.
#pragma once
#include <array>
#include <atomic>
#include <memory>
#include <optional>

#include "ThreadSafety.h"
#include "engine/Janitor.h"
#include "engine/ShowFormat.h"
#include "engine/audio/ChannelSounds.h"
#include "engine/audio/GainRamp.h"
#include "engine/audio/StereoBlock.h"
#include "engine/channel/Channel.h"
#include "engine/frame/FramePool.h"
#include "engine/source/SourceSet.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowSourceStatisticsItem.h"
#include "tagKorviaSourceState.h"

namespace korvia {

/// What the console is told of a source with these figures.
tagKorviaShowSourceStatisticsItem statisticsOf(const SourceFigures& figures);

/// Adds the source in a slot to the figures of the engine.
void addFigures(int slot, const SourceFigures& source, tagKorviaShowEngineFigures& figures);

class ChannelBank final : public ChannelPictures, public ChannelSounds {
 public:
  /// The janitor destroys closed sources, because that may take time.
  explicit ChannelBank(Janitor& janitor) : janitor_(janitor) {}
  ~ChannelBank();

  // Console thread.
  /// Creates or replaces the source of the object. `sink` gets the notifies of the source and may be null.
  /// Null, with a log line, for an object that holds no source.
  IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                const tagKorviaFormatInfo& format, IKorviaShowEngineSink* sink);
  void closeSource(KorviaShowObjectID id);
  /// Where the income server of this machine listens; 0 when it does not.
  void setIncomePort(int port) { *incomePort_ = port; }
  IKorviaShowSource* getSource(KorviaShowObjectID id);
  void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state);
  /// `items`: one for each of the eight media channels; that of a channel without a source is emptied.
  void getSourceState(tagKorviaShowSourceStatisticsItem* items);
  /// Adds the held and skipped pictures of all open sources.
  void getFigures(tagKorviaShowEngineFigures& figures);

  // Engine thread.
  void open(const ShowFormat& format);
  /// Forgets the pictures; the sources stay open.
  void close();
  /// Closes all sources and waits for them for a bounded time. When the engine thread has ended, the console
  /// thread may call it.
  void closeSources();
  /// Pulls the pictures of all sources for the next tick, `ticks` frames after the one before.
  void beginTick(int ticks);
  /// The picture of a media channel or of the karaoke; black for every other id. The channel is needed from
  /// then on: it is decoded at the full rate until a tick passes in which nobody asks for it.
  FrameRef picture(int channelId) override;
  bool pullSound(int slot, StereoSpan piece) override;
  /// The same for the monitor of a strip, which is content with less.
  FrameRef stripPicture(int channelId);
  /// The channel is needed in this tick, as if its picture had been asked for.
  void keep(int channelId);
  /// Whether sources that are not needed may leave out pictures.
  void setSaving(bool saving) { saving_ = saving; }
  /// Pictures that the open sources did not have in time.
  std::int64_t heldFrames() const;
  FrameRef black() { return pool_->black(); }
  int sourceCount() const;

 private:
  static int slotOf(int channelId);
  /// A source that was closed or replaced is kept for one tick, so that its sound fades out and does not stop
  /// in the middle of a wave.
  void fadeOutWhatLeaves(int ticks);
  FrameRef inRenderSize(FrameRef picture);
  bool mixTail(int slot, StereoSpan piece, bool sounds);
  void feedTapsOfPictures(int ticks);
  void feedTapsOfSound(int slot, StereoSpan piece, bool sounds);

  Janitor& janitor_;
  const std::shared_ptr<RefillTurns> refillTurns_ = std::make_shared<RefillTurns>();
  const std::shared_ptr<std::atomic<int>> incomePort_ = std::make_shared<std::atomic<int>>(0);
  Mutex formatMutex_;
  ShowFormat format_ GUARDED_BY(formatMutex_);
  SourceSet sources_;
  SourceArray active_;          // engine thread: a copy of sources_
  quint64 sourcesVersion_ = 0;  // engine thread
  // Engine thread: the sources of the tick before, and the fades of those that are no more.
  SourceArray leaving_;
  std::array<std::optional<GainRamp>, kSourceSlotCount> fades_;
  StereoBlock fading_;
  bool isLeaving_ = false;
  std::unique_ptr<FramePool> pool_;                  // engine thread
  std::array<Channel, kSourceSlotCount> channels_;   // engine thread
  std::array<bool, kSourceSlotCount> needed_{};      // engine thread: in the present tick
  std::array<FrameRef, kSourceSlotCount> pictures_;  // engine thread: of the sources in the present tick
  bool saving_ = false;                              // engine thread
  std::atomic<int> reducedSources_{0};
};

}  // namespace korvia
