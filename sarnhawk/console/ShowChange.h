// What an edit of the show record changed, as saveChanges is told. Masks can be combined. Plain values,
// usable from any thread.
#pragma once

enum ShowChange : unsigned {
  ShowChangeMediaChannel = 0x1,
  ShowChangeStageChannel = 0x2,
  /// System settings and the slots of the take buttons.
  ShowChangeSystem = 0x4,
  ShowChangeAudioMixer = 0x10,
  ShowChangeOutput = 0x20,
  /// Music list and lyrics.
  ShowChangeKaraoke = 0x100,
  ShowChangeTexts = 0x200,
  ShowChangeLogos = 0x400,
  ShowChangeOverlays = 0x800,
  ShowChangeComponents = 0x1000,
};
