// Number of channels with which a show starts, for the console and for hosts that address channels.
#pragma once

namespace korvia {

inline constexpr int kMediaChannelsAtStart = 3;
inline constexpr int kStageChannelsAtStart = 1;

}  // namespace korvia
