// Which channel stands on which bus, and what a take makes of it. Plain values, engine thread.
#pragma once
#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "backend/IShowBackend.h"

namespace korvia {

struct BusSelection {
  /// Channel ids; 0 while nothing was selected.
  int pvm = 0;
  int pgm = 0;

  /// The taken channel goes to program; when it stood on preview, the old program channel goes there. Nothing
  /// changes for 0, an empty preview.
  BusSelection afterTake(int channel) const {
    if (channel == 0 || channel == pgm)
      return *this;
    return {pvm == channel && pgm != 0 ? pgm : pvm, channel};
  }

  /// Reports what is other than `before`, program first.
  void reportChanges(const BusSelection& before, IShowBackendHost& host) const {
    if (pgm != before.pgm)
      host.postResult(ShowEventSelectChannel, static_cast<qulonglong>(PGMObject), pgm);
    if (pvm != before.pvm)
      host.postResult(ShowEventSelectChannel, static_cast<qulonglong>(PVMObject), pvm);
  }
};

}  // namespace korvia
