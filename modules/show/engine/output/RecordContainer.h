// The file formats of a recording: their muxers and their settings, chosen so that a file stays playable
// when the process ends at any moment. Constant data, any thread.
#pragma once
#include <vector>

#include "ElementProperty.h"

namespace korvia {

struct RecordContainer {
  int encapsulation;
  const char* suffix;  ///< of the file, without the dot
  const char* muxer;   ///< GStreamer element
  /// Seconds between repeated stream headers: -1 with each key frame, 0 once in the header of the file.
  int headerInterval;
  bool boxes;                               ///< the file consists of boxes, and its last one must be complete
  std::vector<ElementProperty> properties;  ///< of the muxer
  std::vector<ElementProperty> inletProperties;  ///< of the appsrc in front of each track
  const char* demuxer = nullptr;                 ///< by which a file is read back while it grows

  /// The format of a KorviaShowEncapsulation; mp4, the default of new records, for other numbers.
  static const RecordContainer& of(int encapsulation);
};

}  // namespace korvia
