// What the engine reports of its outputs, at fixed byte positions. A plain value of bytes that may be zeroed.
#pragma once
#include <QMetaType>
#include <array>
#include <cstddef>

/// One target of an output.
struct tagKorviaOutputTargetStatistics {
  /// kbit/s.
  float bitrate = 0;
  std::array<char, 36> reserved{};
};

/// One output: its encoders and its targets.
struct tagKorviaOutputStatisticsBlock {
  /// Frames a second.
  float videoFps = 0;
  /// kbit/s.
  float videoBitrate = 0;
  /// Samples a second.
  float audioRate = 0;
  /// kbit/s.
  float audioBitrate = 0;
  /// Mean time from the making of a frame to the delivery of its packet, of the last second, milliseconds.
  qint64 encodeDelay = 0;
  /// Time stamp of the newest picture less that of the newest sound, milliseconds; 0 without sound.
  qint64 videoAudioDrift = 0;
  /// How many pictures of which type the last second had, as "I 1, P 24"; 90 characters and a terminator.
  std::array<char, 91> frameType{};
  std::array<char, 49> reserved1{};
  tagKorviaOutputTargetStatistics record;
  tagKorviaOutputTargetStatistics http;
  tagKorviaOutputTargetStatistics udp;
  tagKorviaOutputTargetStatistics hls;
  std::array<char, 1064> reserved2{};
  /// RTMP 0, RTMP 1, RTMP local.
  std::array<tagKorviaOutputTargetStatistics, 3> rtmp;
  std::array<char, 196> reserved3{};
};

struct tagKorviaOutputStatistics {
  qint64 reserved = 0;
  /// 0 the network stream, 1 the recording.
  std::array<tagKorviaOutputStatisticsBlock, 4> blocks;
};

static_assert(sizeof(tagKorviaOutputTargetStatistics) == 40);
static_assert(sizeof(tagKorviaOutputStatisticsBlock) == 1712);
static_assert(sizeof(tagKorviaOutputStatistics) == 6856);
static_assert(offsetof(tagKorviaOutputStatistics, blocks) == 8);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, videoFps) == 0);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, videoBitrate) == 4);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, audioRate) == 8);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, audioBitrate) == 12);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, encodeDelay) == 16);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, videoAudioDrift) == 24);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, frameType) == 32);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, record) == 172);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, http) == 212);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, udp) == 252);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, hls) == 292);
static_assert(offsetof(tagKorviaOutputStatisticsBlock, rtmp) == 1396);

Q_DECLARE_METATYPE(tagKorviaOutputStatistics)
