// The running time of a time stamp, which is common to all streams of a pipeline. Any thread.
#pragma once
#include <gst/gst.h>

#include <cstdint>
#include <optional>

namespace korvia {

/// Negative before the begin of the segment; none when the segment does not count time.
inline std::optional<std::int64_t> runningTimeNs(const GstSegment* segment, GstClockTime pts) {
  if (!segment || segment->format != GST_FORMAT_TIME || !GST_CLOCK_TIME_IS_VALID(pts))
    return std::nullopt;
  guint64 time = 0;
  const int sign = gst_segment_to_running_time_full(segment, GST_FORMAT_TIME, pts, &time);
  if (sign == 0)
    return std::nullopt;
  return sign * static_cast<std::int64_t>(time);
}

}  // namespace korvia
