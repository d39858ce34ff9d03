// Serves the stream live to viewers: MPEG-TS or FLV at a path of a port. Made on the engine thread.
#pragma once
#include <memory>

#include "MuxWriter.h"
#include "RetryingWriter.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/Target.h"

namespace korvia {

struct HttpSettings {
  int port = 8080;
  QString path;  ///< "/live/0"
  /// EncapsulationTs or EncapsulationFlv; TS for other numbers.
  int encapsulation = EncapsulationTs;
  RetrySettings retry;
};

class HttpTarget : public Target {
 public:
  /// Starts at once.
  explicit HttpTarget(const HttpSettings& settings);

  /// What the request asks for; null when it asks for none.
  static std::unique_ptr<Target> create(const OutputRequest& request);
};

}  // namespace korvia
