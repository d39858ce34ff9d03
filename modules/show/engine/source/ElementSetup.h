// What the pipelines of films and of live inputs set up in the same way. Any thread.
#pragma once
#include <gst/gst.h>

namespace korvia {

/// Sets a number, when the element has such a property.
void setIfThere(GstElement* element, const char* property, int value);

/// The caps of a pad that is being exposed. The caller unreferences them; may be null.
GstCaps* capsOf(GstPad* pad);

/// Keeps a decodebin from elements that crash the process.
void avoidUnsafeElements(GstElement* decodebin);

/// Accepts pictures with padding on the sink's pad, so that decoders need not copy their pictures to remove
/// it.
void offerPaddedPictures(GstPad* pad);

/// Lets the data of a pad that nobody wants run into nothing.
void linkNowhere(GstElement* pipeline, GstPad* pad);

/// Closes the way into a bin with a decodebin, which crashes when it is stopped while it looks for a decoder.
/// Returns when nothing is under way behind the bin's pad "sink". Called before the pipeline is stopped.
void closeInlet(GstElement* bin);

}  // namespace korvia
