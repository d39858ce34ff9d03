// What the engine reports of one media channel's source, at fixed byte positions. A plain value.
#pragma once
#include <QMetaType>
#include <QString>
#include <cstddef>

struct tagKorviaShowSourceStatisticsItem {
  qint64 reserved = 0;
  QString description;
  /// Frames a millisecond.
  float videoRate = 0;
  /// Samples a millisecond.
  float audioRate = 0;
  /// Time stamp of the picture less that of the sound, milliseconds.
  qint64 videoAudioDrift = 0;
};

static_assert(sizeof(tagKorviaShowSourceStatisticsItem) == 32);
static_assert(offsetof(tagKorviaShowSourceStatisticsItem, description) == 8);
static_assert(offsetof(tagKorviaShowSourceStatisticsItem, videoRate) == 16);
static_assert(offsetof(tagKorviaShowSourceStatisticsItem, audioRate) == 20);
static_assert(offsetof(tagKorviaShowSourceStatisticsItem, videoAudioDrift) == 24);

Q_DECLARE_METATYPE(tagKorviaShowSourceStatisticsItem)
