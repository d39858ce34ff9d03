#include "PacketInterleaver.h"

#include <algorithm>
#include <utility>

namespace korvia {

namespace {

// An encoder that gives nothing for so long has failed, and the other goes on without it.
constexpr qint64 kStallNs = 2'000'000'000;

}  // namespace

PacketInterleaver::PacketInterleaver(Sound sound, std::function<void(const Packet&)> deliver)
    : deliver_(std::move(deliver)), silent_(sound == Sound::No) {
  lines_[kSound].ended = silent_;
}

void PacketInterleaver::push(TrackNumber number, const Track& track, Packet packet) {
  MutexLock lock(mutex_);
  Line& line = lines_[number];
  // The tracks are written into the head of a file, so a track that comes later cannot be added.
  if (line.ended || (number == kSound && silent_))
    return;
  if (line.track.caps != track.caps) {
    line.track = track;
    tracks_.reset();
  }
  packet.track = number;
  line.packets.push_back(std::move(packet));
  release();
}

void PacketInterleaver::end(TrackNumber number) {
  MutexLock lock(mutex_);
  lines_[number].ended = true;
  release();
}

void PacketInterleaver::giveUpStalledSound() {
  const std::deque<Packet>& pictures = lines_[kPicture].packets;
  Line& sound = lines_[kSound];
  if (!sound.packets.empty() || pictures.empty() ||
      pictures.back().ptsNs - pictures.front().ptsNs <= kStallNs)
    return;
  sound.ended = true;
}

/// Targets that have the track hear that it ends; those that join later do not get it at all.
void PacketInterleaver::endTrackOfSound() {
  Packet last;
  last.tracks = tracks();
  last.track = kSound;
  last.ptsNs = last.dtsNs = pictureEndNs_;
  last.endsTrack = true;
  silent_ = true;
  tracks_.reset();
  deliver_(last);
}

void PacketInterleaver::release() {
  Line& picture = lines_[kPicture];
  Line& sound = lines_[kSound];
  giveUpStalledSound();
  while (!picture.packets.empty() || !sound.packets.empty()) {
    if ((picture.packets.empty() && !picture.ended) || (sound.packets.empty() && !sound.ended))
      return;
    if (sound.packets.empty() && begun_ && !silent_)
      endTrackOfSound();
    const bool takesSound =
        picture.packets.empty() ||
        (!sound.packets.empty() && sound.packets.front().ptsNs < picture.packets.front().dtsNs);
    Line& line = takesSound ? sound : picture;
    Packet packet = std::move(line.packets.front());
    line.packets.pop_front();
    const bool isBehindTheEnd =
        picture.ended && picture.packets.empty() && packet.ptsNs + packet.durationNs / 2 > pictureEndNs_;
    if (takesSound && (isBehindTheEnd || !picture.track.caps))
      continue;
    if (!takesSound)
      pictureEndNs_ = std::max(pictureEndNs_, packet.endNs());
    packet.tracks = tracks();
    begun_ = true;
    deliver_(packet);
  }
}

const std::shared_ptr<const TrackList>& PacketInterleaver::tracks() {
  if (!tracks_) {
    // The first packet of a stream is a picture. Sound that has not come by then never comes.
    silent_ = silent_ || !lines_[kSound].track.caps;
    TrackList list{lines_[kPicture].track};
    if (!silent_)
      list.push_back(lines_[kSound].track);
    tracks_ = std::make_shared<TrackList>(std::move(list));
  }
  return tracks_;
}

}  // namespace korvia
