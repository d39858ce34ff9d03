// One encoded picture, or a piece of encoded sound, between an encoder and its targets. Immutable, and
// shared by all targets without a copy. Any thread.
#pragma once
#include <gst/gst.h>

#include <QtGlobal>
#include <memory>
#include <vector>

#include "FrameRate.h"
#include "engine/frame/Frame.h"

namespace korvia {

using BufferRef = std::shared_ptr<GstBuffer>;
using CapsRef = std::shared_ptr<GstCaps>;

/// Takes over the caller's reference.
inline BufferRef holdBuffer(GstBuffer* buffer) {
  return {buffer, [](GstBuffer* held) { gst_buffer_unref(held); }};
}
inline CapsRef holdCaps(GstCaps* caps) {
  return {caps, [](GstCaps* held) { gst_caps_unref(held); }};
}

/// One track of the output of an encoder.
struct Track {
  enum class Kind { Picture, Sound };

  Kind kind = Kind::Picture;
  CapsRef caps;    ///< of the packets; with the codec's headers where they are not in the packets
  FrameSize size;  ///< of a picture
  FrameRate rate;  ///< of the pictures
  int kbps = 0;    ///< that the encoder aims at
  /// Counts the encoders that replaced each other. A file has the headers of one encoder only.
  int generation = 0;
};

using TrackList = std::vector<Track>;

struct Packet {
  /// All tracks of the stream, so that a target knows them from its first packet.
  std::shared_ptr<const TrackList> tracks;
  int track = 0;  ///< index into `tracks`
  BufferRef data;
  qint64 bytes = 0;  ///< of the data
  /// Presentation and decoding time since frame 0 of the encoder, or since a target's join. The time stamps
  /// of the buffer itself are not used.
  qint64 ptsNs = 0;
  qint64 dtsNs = 0;
  qint64 durationNs = 0;
  /// Decoding can begin here: a key frame. Never set for sound.
  bool keyFrame = false;
  /// No packet of this track follows, and this one has no data.
  bool endsTrack = false;

  bool isPicture() const { return (*tracks)[static_cast<std::size_t>(track)].kind == Track::Kind::Picture; }
  qint64 endNs() const { return ptsNs + durationNs; }
};

}  // namespace korvia
