// The file formats of a recording: which multiplexer writes them, and how, so that a file survives the end of
// the process at any moment. Constant data, any thread.
#pragma once
#include <vector>

#include "ElementProperty.h"

namespace korvia {

struct RecordContainer {
  int encapsulation;
  const char* suffix;  ///< of the file, without the dot
  const char* muxer;   ///< GStreamer element
  /// Seconds between repeated stream headers: -1 with every key picture, 0 once in the file's own header.
  int headerInterval;
  bool boxes;                               ///< the file is a row of boxes, of which the last must be whole
  std::vector<ElementProperty> properties;  ///< of the muxer
  std::vector<ElementProperty> inletProperties;  ///< of the appsrc in front of each track

  /// The format for a KorviaShowEncapsulation; mp4, the default of new records, for any other number.
  static const RecordContainer& of(int encapsulation);
};

}  // namespace korvia
