// The channels on the two buses, and how a take changes them. Plain values, engine thread.
#pragma once
#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "backend/IShowBackend.h"

namespace korvia {

struct BusSelection {
  /// Channel ids; 0 while nothing was selected.
  int pvm = 0;
  int pgm = 0;

  /// The taken channel goes to program; if it was on preview, the old program channel goes there. Channel 0,
  /// an empty preview, changes nothing.
  BusSelection afterTake(int channel) const {
    if (channel == 0 || channel == pgm)
      return *this;
    return {pvm == channel && pgm != 0 ? pgm : pvm, channel};
  }

  /// Reports the buses that differ from `before`, program first.
  void reportChanges(const BusSelection& before, IShowBackendHost& host) const {
    if (pgm != before.pgm)
      host.postResult(ShowEventSelectChannel, static_cast<qulonglong>(PGMObject), pgm);
    if (pvm != before.pvm)
      host.postResult(ShowEventSelectChannel, static_cast<qulonglong>(PVMObject), pvm);
  }
};

}  // namespace korvia
