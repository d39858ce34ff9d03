// Timing figures of the engine, for the status page, the bench and the black box. A plain value.
#pragma once
#include <QMetaType>
#include <array>

#include "KorviaShowObjectID.h"
#include "tagKorviaShowOutputReport.h"

struct tagKorviaShowEngineFigures {
  /// Over the last 10 s, and the longest time since the engine opened.
  struct StageTime {
    double p50Ms = 0;
    double p99Ms = 0;
    double maxMs = 0;
    double maxOfRunMs = 0;

    friend bool operator==(const StageTime&, const StageTime&) = default;
  };

  /// Of program, by EBU R 128, since the engine opened. Silence is kSilence: EBU R 128 takes no notice of
  /// what is less loud.
  struct Loudness {
    static constexpr double kSilence = -70;
    double momentaryLufs = kSilence;   ///< of 400 ms
    double shortTermLufs = kSilence;   ///< of 3 s
    double integratedLufs = kSilence;  ///< of the whole show, without its pauses
    double truePeakDbtp = kSilence;

    friend bool operator==(const Loudness&, const Loudness&) = default;
  };

  /// A sound device, which plays by a clock of its own.
  struct SoundDevice {
    bool playing = false;
    /// How much slower than the show its clock runs, in parts of 10^6; 0 in the first half minute.
    double driftPpm = 0;
    /// Times that the sound broke off, because the device was too fast or took nothing.
    qint64 breaks = 0;

    friend bool operator==(const SoundDevice&, const SoundDevice&) = default;
  };

  /// A source that cannot wait, such as a camera or a stream from the network.
  struct LiveSource {
    bool isLive = false;
    /// How much faster than the show its clock runs, in parts of 10^6.
    double driftPpm = 0;
    /// From the arrival of the picture on show to its first frame.
    double latencyMs = 0;
    /// Times that its input was opened and has delivered.
    qint64 connections = 0;
    /// Jumps of its time stamps that were removed.
    qint64 stampJumps = 0;
    /// Frames at which the picture that was due had not come.
    qint64 missedFrames = 0;

    friend bool operator==(const LiveSource&, const LiveSource&) = default;
  };

  /// Program frames since the engine opened.
  qint64 frames = 0;
  /// Ticks that began more than a quarter of a frame after their deadline, missed frames or not.
  qint64 lateTicks = 0;
  /// Program frames that repeat the one before because a tick came late.
  qint64 repeatedFrames = 0;
  /// Strip pictures that were dropped to save time.
  qint64 droppedStripPictures = 0;
  /// Pictures that open films did not have in time, and pictures that they skipped to catch up.
  qint64 heldFilmFrames = 0;
  qint64 skippedFilmFrames = 0;
  /// Over the last 10 s, and since the engine opened.
  double fps = 0;
  double fpsOfRun = 0;
  StageTime sources;
  StageTime mix;
  StageTime items;
  StageTime audio;
  StageTime monitors;
  StageTime handOver;
  StageTime tick;
  Loudness loudness;
  SoundDevice programDevice;
  SoundDevice previewDevice;
  int sourceCount = 0;
  /// Of the media channels.
  std::array<LiveSource, kMediaChannelMax> liveSources{};
  /// Sources that nobody needs and that leave out pictures, because the machine is short of computing time.
  int reducedSources = 0;
  /// The share of all cores that the process uses, 0 to 1.
  double cpuLoad = 0;
  /// 0 to 1.
  float switchPosition = 0;
  /// Channel ids on the two buses.
  int pvmChannel = 0;
  int pgmChannel = 0;
  bool recording = false;
  bool streaming = false;
  /// By KorviaShowOutputSlot: the stream, the recording.
  std::array<tagKorviaShowOutputReport, 2> outputs;
  /// Virtual camera, NDI and SDI, as far as they are on, in this order.
  QList<tagKorviaShowTargetReport> deviceOutputs;

  friend bool operator==(const tagKorviaShowEngineFigures&, const tagKorviaShowEngineFigures&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowEngineFigures)
