// Sends MPEG-TS in datagrams to an address or a group. Made on the engine thread.
#pragma once
#include <memory>

#include "MuxWriter.h"
#include "RetryingWriter.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/Target.h"

namespace korvia {

struct UdpSettings {
  QString address;  ///< of a machine or a multicast group; a name or numbers
  int port = 0;
  int ttl = 1;            ///< how many routers pass a datagram on, 1 to 255
  QString bindInterface;  ///< name of a network interface, or its address; empty for the system's choice
  RetrySettings retry;
};

class UdpTarget : public Target {
 public:
  /// Starts at once.
  explicit UdpTarget(const UdpSettings& settings);

  /// What the request asks for; null when it asks for none.
  static std::unique_ptr<Target> create(const OutputRequest& request);

  /// Looks the address and the interface up, which may wait for a name server.
  static MuxPlan planFor(const UdpSettings& settings);
};

}  // namespace korvia
