// Cuts the stream into segments of MPEG-TS with a list, in a folder that the web server serves. Made on the
// engine thread.
#pragma once
#include <memory>

#include "RetryingWriter.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/Target.h"

namespace korvia {

struct HlsSettings {
  enum class Split {
    Anywhere,    ///< a key frame is asked for at the length of a segment
    AtKeyFrame,  ///< at the next regular key frame
  };

  QString folder;  ///< drive path or path of this machine
  int segmentSeconds = 10;
  int listedSegments = 6;
  Split split = Split::Anywhere;
  RetrySettings retry;
};

class HlsTarget : public Target {
 public:
  /// Starts at once.
  explicit HlsTarget(const HlsSettings& settings);

  /// What the request asks for; null when it asks for none.
  static std::unique_ptr<Target> create(const OutputRequest& request);
};

}  // namespace korvia
