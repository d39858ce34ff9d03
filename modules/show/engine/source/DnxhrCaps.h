// A GStreamer element that lets DNxHR in QuickTime files be decoded: the demuxer hands such a stream on under
// the file's own four letters, which no decoder knows. It changes the name of the format alone.
#pragma once

namespace korvia {

/// Registers the element, so that decodebin finds it. Once, after GStreamer was started.
bool registerDnxhrCaps();

}  // namespace korvia
