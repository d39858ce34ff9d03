// The channels on the buses at a tick, for whoever mixes them. A plain value, engine thread.
#pragma once

namespace korvia {

/// Channel ids; 0 for none. While a take runs, program has two channels: `position` goes from 0, all
/// `program`, to 1, all `next`.
struct BusChannels {
  int preview = 0;
  int program = 0;
  int next = 0;
  double position = 0;
};

}  // namespace korvia
