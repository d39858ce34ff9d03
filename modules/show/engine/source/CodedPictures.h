// Finds the pictures of a coded stream to which no other picture refers, so that they can be left out before
// the decoder. Knows H.264, HEVC, MPEG-1, MPEG-2 and MPEG-4 part 2; of streams of key frames it lets every
// second one be left out, and of all others none. One thread at a time.
#pragma once
#include <gst/gst.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvia {

class CodedPictures {
 public:
  /// The format of the pictures that follow.
  void setCaps(const GstCaps* caps);
  /// `buffer` holds one picture. Called for each, in decoding order.
  bool isDroppable(GstBuffer* buffer);

 private:
  using Bytes = std::span<const std::uint8_t>;
  enum class Codec { Other, H264, Hevc, Mpeg2, Mpeg4, KeyFrames };

  bool isDroppable(Bytes picture);
  template <typename Test>
  bool firstPictureUnit(Bytes picture, Test test) const;

  Codec codec_ = Codec::Other;
  std::size_t lengthBytes_ = 0;  // before each unit; 0 for start codes
  int highestLayer_ = 0;         // temporal, of HEVC
  bool second_ = false;
};

}  // namespace korvia
