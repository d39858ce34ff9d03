// Puts the packets of the picture and of the sound encoder into one row, ordered by time, and tells each of
// them the tracks of the stream. Targets rely on the order: what belongs before a key frame comes before it.
// Any thread; the packets are delivered one at a time, on the thread that pushes.
#pragma once
#include <array>
#include <deque>
#include <functional>
#include <memory>

#include "Packet.h"
#include "ThreadSafety.h"

namespace korvia {

class PacketInterleaver {
 public:
  enum class Sound { Yes, No };

  /// `deliver` may not call back.
  PacketInterleaver(Sound sound, std::function<void(const Packet&)> deliver);

  void pushPicture(const Track& track, Packet packet) { push(kPicture, track, std::move(packet)); }
  void pushSound(const Track& track, Packet packet) { push(kSound, track, std::move(packet)); }
  /// No packet of the track follows. Sound ends with the picture: what is behind it is dropped.
  void endPicture() { end(kPicture); }
  void endSound() { end(kSound); }

 private:
  enum TrackNumber : int { kPicture, kSound, kTracks };

  struct Line {
    std::deque<Packet> packets;
    Track track;
    bool ended = false;
  };

  void push(TrackNumber number, const Track& track, Packet packet) EXCLUDES(mutex_);
  void end(TrackNumber number) EXCLUDES(mutex_);
  /// Delivers what nothing earlier can come before any more.
  void release() REQUIRES(mutex_);
  void giveUpStalledSound() REQUIRES(mutex_);
  void endTrackOfSound() REQUIRES(mutex_);
  const std::shared_ptr<const TrackList>& tracks() REQUIRES(mutex_);

  const std::function<void(const Packet&)> deliver_;
  Mutex mutex_;
  std::array<Line, kTracks> lines_ GUARDED_BY(mutex_);
  std::shared_ptr<const TrackList> tracks_ GUARDED_BY(mutex_);
  bool silent_ GUARDED_BY(mutex_);  // the stream has no track of sound, or none any more
  bool begun_ GUARDED_BY(mutex_) = false;
  qint64 pictureEndNs_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia
