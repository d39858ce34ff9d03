#include "KorviaShowEvents.h"

const char* korviaShowEventName(quint64 eventId) {
#define KORVIA_EVENT_NAME(name) \
  case name:                    \
    return #name
  switch (eventId) {
    KORVIA_EVENT_NAME(ShowEventOpen);
    KORVIA_EVENT_NAME(ShowEventClose);
    KORVIA_EVENT_NAME(ShowEventSnapshot);
    KORVIA_EVENT_NAME(ShowEventResizeWindow);
    KORVIA_EVENT_NAME(ShowEventSwitchPosition);
    KORVIA_EVENT_NAME(ShowEventTake);
    KORVIA_EVENT_NAME(ShowEventSelectChannel);
    KORVIA_EVENT_NAME(ShowEventChannelOption);
    KORVIA_EVENT_NAME(ShowEventAlphaMatting);
    KORVIA_EVENT_NAME(ShowEventChannelBackground);
    KORVIA_EVENT_NAME(ShowEventPlayTimeline);
    KORVIA_EVENT_NAME(ShowEventAddComponent);
    KORVIA_EVENT_NAME(ShowEventRemoveComponent);
    KORVIA_EVENT_NAME(ShowEventUpdateStage);
    KORVIA_EVENT_NAME(ShowEventPlacementChanged);
    KORVIA_EVENT_NAME(ShowEventPlacementCommit);
    KORVIA_EVENT_NAME(ShowEventKaraokeText);
    KORVIA_EVENT_NAME(ShowEventKaraokeVisible);
    KORVIA_EVENT_NAME(ShowEventKaraokeLyrics);
    KORVIA_EVENT_NAME(ShowEventAddLogo);
    KORVIA_EVENT_NAME(ShowEventRemoveLogo);
    KORVIA_EVENT_NAME(ShowEventUpdateLogo);
    KORVIA_EVENT_NAME(ShowEventAddOverlay);
    KORVIA_EVENT_NAME(ShowEventRemoveOverlay);
    KORVIA_EVENT_NAME(ShowEventUpdateOverlay);
    KORVIA_EVENT_NAME(ShowEventAddText);
    KORVIA_EVENT_NAME(ShowEventRemoveText);
    KORVIA_EVENT_NAME(ShowEventUpdateText);
    KORVIA_EVENT_NAME(ShowEventStartOutput);
    KORVIA_EVENT_NAME(ShowEventStopOutput);
    KORVIA_EVENT_NAME(ShowEventStartVirtualCamera);
    KORVIA_EVENT_NAME(ShowEventStopVirtualCamera);
    KORVIA_EVENT_NAME(ShowEventStartNDI);
    KORVIA_EVENT_NAME(ShowEventStopNDI);
    KORVIA_EVENT_NAME(ShowEventStartSDI);
    KORVIA_EVENT_NAME(ShowEventStopSDI);
    KORVIA_EVENT_NAME(ShowEventAudioMixMode);
    KORVIA_EVENT_NAME(ShowEventVolume);
    KORVIA_EVENT_NAME(ShowEventChannelMix);
    KORVIA_EVENT_NAME(ShowEventAudioEffect);
    default:
      return "";
  }
#undef KORVIA_EVENT_NAME
}
