// A text item. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>
#include <QUuid>

#include "tagKorviaShowPresentAnimation.h"
#include "tagKorviaShowTextStyle.h"

/// Positions and sizes are fractions of the picture, 0.5 is the middle.
struct tagKorviaShowTextInfo {
  QString id = QUuid::createUuid().toString();
  /// May hold ${Time} and line breaks.
  QString text = QStringLiteral("Time: ${Time}");
  /// QDateTime format of ${Time}.
  QString timeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");
  double x = 0.5;
  double y = 0.5;
  double width = 0;
  double height = 0;
  qint32 hAlign = 1;
  qint32 vAlign = 0x84;
  double scrollEndX = 0;
  double scrollEndY = 0;
  /// Seconds; 0 is no scroll.
  float scrollTime = 0;
  tagKorviaShowPresentAnimation enter;
  tagKorviaShowPresentAnimation exit{.effect = 26};
  tagKorviaShowTextStyle style;

  friend bool operator==(const tagKorviaShowTextInfo&, const tagKorviaShowTextInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowTextInfo)
