// Words for channels and output states as the web server tells them. They are not translated, because
// programs read them. Any thread.
#pragma once
#include <QString>
#include <iterator>

#include "KorviaShowObjectID.h"
#include "tagKorviaShowOutputReport.h"

/// "Media-0", "Stage-0".
inline QString channelTitle(int channelId) {
  int index = 0;
  const bool isStage = getObjectKind(channelId, index) == StageObjectKind;
  return (isStage ? QStringLiteral("Stage-%1") : QStringLiteral("Media-%1")).arg(index);
}

inline QString outputStateName(KorviaShowOutputState state) {
  constexpr const char* kNames[] = {"Idle", "Starting", "Running", "Failed", "Finished"};
  static_assert(std::size(kNames) == static_cast<std::size_t>(KorviaShowOutputState::Finished) + 1);
  return QString::fromLatin1(kNames[static_cast<std::size_t>(state)]);
}
