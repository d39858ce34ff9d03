#include "CodedPictures.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace korvia {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr const char* kKeyFrameCodecs[] = {"image/jpeg", "video/x-prores", "video/x-dnxhd", "image/x-jpc"};

/// The bytes after the next start code, 0 0 1; empty when there is none.
Bytes afterStartCode(Bytes bytes) {
  constexpr std::uint8_t kStartCode[] = {0, 0, 1};
  const auto place = std::search(bytes.begin(), bytes.end(), std::begin(kStartCode), std::end(kStartCode));
  return place == bytes.end() ? Bytes() : bytes.subspan(static_cast<std::size_t>(place - bytes.begin()) + 3);
}

/// The size of the length before each unit, from the decoder configuration record (ISO 14496-15); 0 without
/// one.
std::size_t lengthBytesOf(const GstStructure* format, std::size_t place) {
  const char* layout = gst_structure_get_string(format, "stream-format");
  if (!layout || !std::strcmp(layout, "byte-stream"))
    return 0;
  const GValue* value = gst_structure_get_value(format, "codec_data");
  GstBuffer* record = value ? gst_value_get_buffer(value) : nullptr;
  std::uint8_t byte = 0;
  if (!record || gst_buffer_extract(record, place, &byte, 1) != 1)
    return 0;
  return (byte & 3U) + 1U;
}

// Table 7-1 of H.265: the even types below 16 are pictures to which none of the same temporal layer refers.
bool isHevcPicture(int type) {
  return type < 32;
}
bool isHevcUnreferenced(int type) {
  return type < 16 && type % 2 == 0;
}

}  // namespace

void CodedPictures::setCaps(const GstCaps* caps) {
  *this = CodedPictures();
  if (!caps || gst_caps_is_empty(caps) || gst_caps_is_any(caps))
    return;
  const GstStructure* format = gst_caps_get_structure(caps, 0);
  const char* name = gst_structure_get_name(format);
  int version = 0;
  gst_structure_get_int(format, "mpegversion", &version);
  if (!std::strcmp(name, "video/x-h264")) {
    codec_ = Codec::H264;
    lengthBytes_ = lengthBytesOf(format, 4);
  } else if (!std::strcmp(name, "video/x-h265")) {
    codec_ = Codec::Hevc;
    lengthBytes_ = lengthBytesOf(format, 21);
  } else if (!std::strcmp(name, "video/mpeg")) {
    codec_ = version == 4 ? Codec::Mpeg4 : Codec::Mpeg2;
  } else if (std::any_of(std::begin(kKeyFrameCodecs), std::end(kKeyFrameCodecs),
                         [name](const char* codec) { return !std::strcmp(name, codec); })) {
    codec_ = Codec::KeyFrames;
  }
}

bool CodedPictures::isDroppable(GstBuffer* buffer) {
  if (codec_ == Codec::Other)
    return false;
  GstMapInfo map;
  if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
    return false;
  const bool droppable = isDroppable(Bytes(map.data, map.size));
  gst_buffer_unmap(buffer, &map);
  return droppable;
}

/// `test` gets unit after unit and answers for the first one that belongs to a picture.
template <typename Test>
bool CodedPictures::firstPictureUnit(Bytes picture, Test test) const {
  while (!picture.empty()) {
    Bytes unit;
    if (lengthBytes_ == 0) {
      picture = afterStartCode(picture);
      unit = picture;
    } else {
      if (picture.size() < lengthBytes_)
        return false;
      std::size_t length = 0;
      for (std::size_t i = 0; i < lengthBytes_; ++i)
        length = length << 8U | picture[i];
      picture = picture.subspan(lengthBytes_);
      unit = picture.first(std::min(length, picture.size()));
      picture = picture.subspan(unit.size());
    }
    if (const std::optional<bool> answer = test(unit))
      return *answer;
  }
  return false;
}

bool CodedPictures::isDroppable(Bytes picture) {
  using Answer = std::optional<bool>;
  switch (codec_) {
    case Codec::H264:
      // Types 1 to 5 are slices; nal_ref_idc is 0 in all slices of a picture to which none refers.
      return firstPictureUnit(picture, [](Bytes unit) -> Answer {
        const int type = unit.empty() ? 0 : unit[0] & 31;
        return type >= 1 && type <= 5 ? Answer((unit[0] >> 5 & 3) == 0) : std::nullopt;
      });
    case Codec::Hevc:
      return firstPictureUnit(picture, [this](Bytes unit) -> Answer {
        const int type = unit.size() < 2 ? 63 : unit[0] >> 1 & 63;
        if (!isHevcPicture(type))
          return std::nullopt;
        // A picture of a higher temporal layer may refer to it.
        const int layer = unit[1] & 7;
        highestLayer_ = std::max(highestLayer_, layer);
        return isHevcUnreferenced(type) && layer == highestLayer_;
      });
    case Codec::Mpeg2:
      // The picture header: start code 0, 10 bits of temporal reference, 3 bits of type; 3 is a B picture.
      return firstPictureUnit(picture, [](Bytes unit) -> Answer {
        return unit.size() > 2 && unit[0] == 0 ? Answer((unit[2] >> 3 & 7) == 3) : std::nullopt;
      });
    case Codec::Mpeg4:
      // The VOP header: start code B6, 2 bits of type; 2 is a B picture.
      return firstPictureUnit(picture, [](Bytes unit) -> Answer {
        return unit.size() > 1 && unit[0] == 0xB6 ? Answer(unit[1] >> 6 == 2) : std::nullopt;
      });
    case Codec::KeyFrames:
      second_ = !second_;
      return !second_;
    case Codec::Other:
      break;
  }
  return false;
}

}  // namespace korvia
