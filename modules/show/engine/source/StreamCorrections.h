// Corrections of what GStreamer's demuxers and parsers tell wrongly of a film. Called for an element when it
// is added to a pipeline; the corrections are made on its streaming thread.
#pragma once
#include <gst/gst.h>

namespace korvia {

/// The MP4 demuxer drops the range that the container states, and a parser prefers the container to the
/// stream. Full-range films would then be shown as limited range, so the stream is preferred.
void preferStreamColors(GstElement* parser);

/// The Matroska demuxer begins another segment, with another origin of the time, when it finds a packet
/// before the first one, as that of the sound often is. Pictures and sound would then differ by the priming.
void keepFirstSegments(GstElement* demuxer);

}  // namespace korvia
