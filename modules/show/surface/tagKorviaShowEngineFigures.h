// How the engine keeps up: what the status page, the bench and the black box report. A plain value.
#pragma once
#include <QMetaType>
#include <array>

#include "tagKorviaShowOutputReport.h"

struct tagKorviaShowEngineFigures {
  struct StageTime {
    double p50Ms = 0;
    double p99Ms = 0;
    double maxMs = 0;

    friend bool operator==(const StageTime&, const StageTime&) = default;
  };

  /// Program frames since the engine opened.
  qint64 frames = 0;
  /// Ticks that began after their deadline.
  qint64 lateTicks = 0;
  /// Program frames that repeat the one before because a tick came late.
  qint64 repeatedFrames = 0;
  /// Strip pictures that were left out to save time.
  qint64 droppedStripPictures = 0;
  double fps = 0;
  StageTime sources;
  StageTime mix;
  StageTime items;
  StageTime audio;
  StageTime monitors;
  StageTime handOver;
  StageTime tick;
  int sourceCount = 0;
  /// 0 to 1.
  float switchPosition = 0;
  /// Channel ids on the two buses.
  int pvmChannel = 0;
  int pgmChannel = 0;
  bool recording = false;
  bool streaming = false;
  /// By KorviaShowOutputSlot: the stream, the recording.
  std::array<tagKorviaShowOutputReport, 2> outputs;

  friend bool operator==(const tagKorviaShowEngineFigures&, const tagKorviaShowEngineFigures&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowEngineFigures)
