// One command of a viewer of the web server, "POST /take/1" for example. A plain value, any thread.
#pragma once
#include <QString>
#include <optional>

namespace korvia {

struct WebCommand {
  enum class Kind { Take, Cut, Select, StartRecord, StopRecord, StartStream, StopStream };

  Kind kind = Kind::Take;
  int transition = 0;          // of a take, 0 to 3
  std::optional<int> channel;  // the id of a channel; without one it is that on preview

  friend bool operator==(const WebCommand&, const WebCommand&) = default;

  /// The command of a path: "/take/N", "/take/N/CHANNEL", "/cut", "/cut/CHANNEL", "/select/CHANNEL",
  /// "/record/start", "/record/stop", "/stream/start", "/stream/stop". Empty for any other path.
  static std::optional<WebCommand> parse(const QString& path);
};

enum class WebVerdict {
  Accepted,        // the console runs it next
  UnknownChannel,  // the show has no such channel
  NotReady,        // the console is not open, or too many commands wait
};

}  // namespace korvia
