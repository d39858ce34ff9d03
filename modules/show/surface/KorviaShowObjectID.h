// Names of everything that can be addressed in the engine. Plain values, any thread.
#pragma once

enum KorviaShowObjectID : int {
  SourceObject = 1,      ///< 1 to 8: source of media channel index 0 to 7
  MediaChannel = 0x10,   ///< 0x10 to 0x17
  StageChannel = 0x100,  ///< 0x100 to 0x103
  KaraokeObject = 0x1000,
  PVMObject = 0x1001,
  PGMObject = 0x1002,
};

inline constexpr int kMediaChannelMax = 8;
inline constexpr int kStageChannelMax = 4;

enum KorviaShowObjectKind : int {
  MediaObjectKind = 1,
  StageObjectKind = 2,
  KaraokeObjectKind = 3,
  BusObjectKind = 4,
};

/// Kind of an object id, and its index within the kind. The ranges run one past the last channel on
/// purpose; anything unknown counts as media channel 0. Bus ids and the karaoke leave the index at 0.
inline int getObjectKind(int id, int& outIndex) {
  outIndex = 0;
  if (id >= 0x10 && id <= 0x18) {
    outIndex = id - 0x10;
    return MediaObjectKind;
  }
  if (id >= 0x100 && id <= 0x104) {
    outIndex = id - 0x100;
    return StageObjectKind;
  }
  if (id == 0x1000)
    return KaraokeObjectKind;
  if (id > 0x1000)
    return BusObjectKind;
  return MediaObjectKind;
}

namespace korvia {

/// Objects that can hold a source: the media channels and the karaoke.
inline constexpr int kSourceSlotCount = kMediaChannelMax + 1;
inline constexpr int kKaraokeSlot = kMediaChannelMax;

/// Slot of the object's source: 0 to 7 for a media channel in either form of its id, 8 for the karaoke, -1
/// for anything that holds no source.
inline int sourceIndexOf(int id) {
  if (id >= SourceObject && id < SourceObject + kMediaChannelMax)
    return id - SourceObject;
  if (id >= MediaChannel && id < MediaChannel + kMediaChannelMax)
    return id - MediaChannel;
  return id == KaraokeObject ? kKaraokeSlot : -1;
}

}  // namespace korvia
