// Which channel stands on which bus, and what a take changes. Engine thread.
#pragma once
#include "KorviaShowObjectID.h"

namespace korvia {

class BusSelection {
 public:
  /// Channel ids; 0 while nothing was selected.
  int pvmChannel() const { return pvm_; }
  int pgmChannel() const { return pgm_; }

  void selectPvm(int channel) { pvm_ = channel; }
  void selectPgm(int channel) { pgm_ = channel; }

  struct Changes {
    bool pvm = false;
    bool pgm = false;
  };

  /// The taken channel goes to program; when it stood on preview, the old program channel goes there. Nothing
  /// changes for 0, an empty preview.
  Changes take(int channel) {
    Changes changes;
    if (channel == 0 || channel == pgm_)
      return changes;
    const int old = pgm_;
    changes.pgm = true;
    pgm_ = channel;
    if (pvm_ == channel && old != 0) {
      changes.pvm = true;
      pvm_ = old;
    }
    return changes;
  }

 private:
  int pvm_ = 0;
  int pgm_ = 0;
};

}  // namespace korvia
