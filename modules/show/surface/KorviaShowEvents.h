// Numbers of the events between console and engine. The table in KorviaShowEvents.cpp names them for the
// black box. Plain values, any thread.
#pragma once
#include <QtGlobal>

enum KorviaShowEvent : quint64 {
  ShowEventOpen = 0,
  ShowEventClose = 1,
  ShowEventSnapshot = 2,
  ShowEventResizeWindow = 3,
  ShowEventSwitchPosition = 5,
  ShowEventTake = 6,
  ShowEventSelectChannel = 7,
  ShowEventChannelOption = 10,
  ShowEventAlphaMatting = 12,
  ShowEventChannelBackground = 13,
  ShowEventPlayTimeline = 16,
  ShowEventAddComponent = 18,
  ShowEventRemoveComponent = 19,
  ShowEventUpdateStage = 20,
  ShowEventPlacementChanged = 25,
  ShowEventPlacementCommit = 26,
  ShowEventKaraokeText = 27,
  ShowEventKaraokeVisible = 28,
  ShowEventKaraokeLyrics = 29,
  ShowEventAddLogo = 32,
  ShowEventRemoveLogo = 33,
  ShowEventUpdateLogo = 34,
  ShowEventAddOverlay = 35,
  ShowEventRemoveOverlay = 36,
  ShowEventUpdateOverlay = 37,
  ShowEventAddText = 38,
  ShowEventRemoveText = 39,
  ShowEventUpdateText = 40,
  ShowEventStartOutput = 41,
  ShowEventStopOutput = 42,
  ShowEventStartVirtualCamera = 43,
  ShowEventStopVirtualCamera = 44,
  ShowEventStartNDI = 45,
  ShowEventStopNDI = 46,
  ShowEventStartSDI = 47,
  ShowEventStopSDI = 48,
  ShowEventAudioMixMode = 49,
  ShowEventVolume = 50,
  ShowEventChannelMix = 51,
  ShowEventAudioEffect = 52,
};

/// "ShowEventTake" for 6; an empty text for a number that nobody posts. Static storage.
const char* korviaShowEventName(quint64 eventId);
