// Pushes to a server: RTMP, RTMP over TLS, or SRT. Made on the engine thread.
#pragma once
#include <memory>

#include "MuxWriter.h"
#include "RetryingWriter.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/Target.h"

namespace korvia {

struct PushSettings {
  TargetKind kind = TargetKind::Rtmp0;
  QString url;  ///< rtmp://, rtmps:// or srt://
  RetrySettings retry;
};

class PushTarget : public Target {
 public:
  /// Starts at once, and fails for an address that is no push.
  explicit PushTarget(const PushSettings& settings);

  /// The pushes that the request asks for; null when it does not ask for this one.
  static std::unique_ptr<Target> createFirst(const OutputRequest& request);
  static std::unique_ptr<Target> createSecond(const OutputRequest& request);
  /// Into the income server of this program.
  static std::unique_ptr<Target> createLocal(const OutputRequest& request);

  static MuxPlan planFor(const QString& url);
  /// Under which URL the own server takes a path of the settings; port 0 is the port that the server wants.
  /// The secret is an argument of the stream, which the server takes off its name.
  static QString localUrl(const QString& path, const IncomeTarget& income);
};

}  // namespace korvia
