#include "RecordContainer.h"

#include "tagKorviaShowOutputParam.h"

namespace korvia {

namespace {

// Each fragment has its own index, so a file that is not finalised plays up to its last fragment. A clean
// stop writes one index and makes it an ordinary file.
const std::vector<ElementProperty> kFragments = {{"fragment-duration", "250"},
                                                 {"fragment-mode", "first-moov-then-finalise"}};

// flvmux asks its input for the duration when it writes the header, and writes a day when nobody knows. A
// clean stop corrects it; in a file that was not stopped players ignore a duration of 0 and look at the end.
const std::vector<ElementProperty> kNoDuration = {{"duration", "0"}};

const std::vector<ElementProperty> kClusters = {{"max-cluster-duration", "500000000"}};

// The first one is used for unknown numbers.
const RecordContainer kContainers[] = {
    {EncapsulationMp4, "mp4", "mp4mux", 0, true, kFragments, {}, "qtdemux"},
    {EncapsulationMov, "mov", "qtmux", 0, true, kFragments, {}, "qtdemux"},
    {EncapsulationTs, "ts", "mpegtsmux", -1, false, {}, {}, "tsdemux"},
    {EncapsulationFlv, "flv", "flvmux", 0, false, {}, kNoDuration, "flvdemux"},
    {EncapsulationMkv, "mkv", "matroskamux", 0, false, kClusters, {}, "matroskademux"},
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
