#include "console/SourceHealth.h"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

#include "IKorviaShowSource.h"
#include "console/MultimediaClock.h"
#include "tagKorviaShowSourceInfo.h"

namespace {

constexpr quint32 kHeldMs = 1000;
constexpr qint64 kTenthMsPerMs = 10;

/// Kinds that deliver new pictures all the time while they play.
constexpr int kMovingKinds[] = {SourceKindMovie,  SourceKindMovieList, SourceKindUrl,   SourceKindKrmp,
                                SourceKindDevice, SourceKindDevice3D,  SourceKindIncome};

QString text(const char* source) {
  return QCoreApplication::translate("SourceHealth", source);
}

QString failureOf(IKorviaShowSource* source) {
  tagKorviaSourceLinkState link;
  source->getState(link);
  return link.reason.isEmpty() ? text(QT_TRANSLATE_NOOP("SourceHealth", "This source cannot be shown"))
                               : text(QT_TRANSLATE_NOOP("SourceHealth", "Error: %1")).arg(link.reason);
}

}  // namespace

QString SourceHealth::examine(IKorviaShowSource* source, int kind, Hold hold) {
  const int state = source->getPlayState();
  const bool shouldMove =
      state == Playing && hold == Hold::Off &&
      std::find(std::begin(kMovingKinds), std::end(kMovingKinds), kind) != std::end(kMovingKinds);
  if (!shouldMove)
    _frames = -1;
  if (state == Error)
    return failureOf(source);
  if (state == Ended)
    return text(QT_TRANSLATE_NOOP("SourceHealth", "This source has ended"));
  if (shouldMove && isStandingStill(source))
    return text(QT_TRANSLATE_NOOP("SourceHealth", "No new picture for more than a second"));
  return QString();
}

bool SourceHealth::isStandingStill(IKorviaShowSource* source) {
  qint64 frames = 0;
  source->getFrameCount(frames);
  if (frames != _frames) {
    _frames = frames;
    _lastPictureTick = MultimediaClock::now();
  }
  // A film of long pictures is late only when its next picture was due.
  tagKorviaSourceLinkState link;
  source->getState(link);
  return MultimediaClock::since(_lastPictureTick) > kHeldMs + link.pictureDuration / kTenthMsPerMs;
}
