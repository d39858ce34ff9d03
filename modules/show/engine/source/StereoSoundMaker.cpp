#include "StereoSoundMaker.h"

#include "runningTime.h"

namespace korvia {

std::optional<StereoSoundMaker::Sound> StereoSoundMaker::make(GstSample* sample) {
  GstAudioInfo format;
  GstCaps* caps = gst_sample_get_caps(sample);
  GstBuffer* whole = gst_sample_get_buffer(sample);
  if (!caps || !whole || !gst_audio_info_from_caps(&format, caps) ||
      GST_AUDIO_INFO_FORMAT(&format) != GST_AUDIO_FORMAT_F32 || GST_AUDIO_INFO_RATE(&format) != kSampleRate)
    return std::nullopt;
  if (!mixdown_ || !gst_audio_info_is_equal(&format, &format_)) {
    format_ = format;
    mixdown_.emplace(format);
  }
  const GstSegment* segment = gst_sample_get_segment(sample);
  const bool inTime = segment && segment->format == GST_FORMAT_TIME && GST_BUFFER_PTS_IS_VALID(whole);
  GstBuffer* buffer = gst_buffer_ref(whole);
  if (inTime)
    buffer = gst_audio_buffer_clip(buffer, segment, kSampleRate, GST_AUDIO_INFO_BPF(&format));
  GstMapInfo map;
  if (!buffer || !gst_buffer_map(buffer, &map, GST_MAP_READ)) {
    gst_clear_buffer(&buffer);
    return std::nullopt;
  }
  const std::size_t samples = map.size / static_cast<std::size_t>(GST_AUDIO_INFO_BPF(&format));
  left_.resize(samples);
  right_.resize(samples);
  Sound sound{{left_.data(), right_.data(), static_cast<int>(samples)}, std::nullopt, std::nullopt};
  mixdown_->mix(reinterpret_cast<const float*>(map.data), sound.span);
  if (inTime) {
    const GstClockTime time = gst_segment_to_stream_time(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (GST_CLOCK_TIME_IS_VALID(time))
      sound.ptsNs = static_cast<std::int64_t>(time);
    sound.runningNs = runningTimeNs(segment, GST_BUFFER_PTS(buffer));
  }
  gst_buffer_unmap(buffer, &map);
  gst_buffer_unref(buffer);
  if (samples == 0)
    return std::nullopt;
  return sound;
}

}  // namespace korvia
