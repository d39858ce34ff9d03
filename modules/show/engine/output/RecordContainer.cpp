#include "RecordContainer.h"

#include "tagKorviaShowOutputParam.h"

namespace korvia {

namespace {

// Fragments carry their own index, so a file that is never finalised plays to its last fragment; a clean stop
// turns the file into an ordinary one with a single index.
const std::vector<ElementProperty> kFragments = {{"fragment-duration", "500"},
                                                 {"fragment-mode", "first-moov-then-finalise"}};

// flvmux asks its input for the duration when it writes the header, and writes a day when nobody knows. A
// clean stop corrects it; in a file that was not stopped players ignore a duration of 0 and look at the end.
const std::vector<ElementProperty> kNoDuration = {{"duration", "0"}};

// In the order of preference for an unknown number.
const RecordContainer kContainers[] = {
    {EncapsulationMp4, "mp4", "mp4mux", 0, true, kFragments, {}},
    {EncapsulationMov, "mov", "qtmux", 0, true, kFragments, {}},
    {EncapsulationTs, "ts", "mpegtsmux", -1, false, {}, {}},
    {EncapsulationFlv, "flv", "flvmux", 0, false, {}, kNoDuration},
    {EncapsulationMkv, "mkv", "matroskamux", 0, false, {{"max-cluster-duration", "500000000"}}, {}},
};

}  // namespace

const RecordContainer& RecordContainer::of(int encapsulation) {
  for (const RecordContainer& container : kContainers) {
    if (container.encapsulation == encapsulation)
      return container;
  }
  return kContainers[0];
}

}  // namespace korvia
