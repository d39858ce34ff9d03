// How long an input holds data back that wait to be shown. The hold grows from 0 after the begin, so that the
// first picture is there at once and the pictures that follow never pause. Any thread.
#pragma once
#include <algorithm>
#include <cstdint>

namespace korvia {

/// For data that have come this long after the first ones. Until the hold has its full length, data pass at
/// four fifths of their pace.
inline std::int64_t heldBackNs(std::int64_t sinceBeginNs, std::int64_t mostNs) {
  return std::clamp<std::int64_t>(sinceBeginNs / 4, 0, mostNs);
}

}  // namespace korvia
