// A logo or an overlay. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>
#include <QUuid>

#include "tagKorviaShowPresentAnimation.h"

/// Positions are fractions of the picture, 0.5 is the middle; scale 1 is the picture's own size.
struct tagKorviaShowLogoInfo {
  QString id = QUuid::createUuid().toString();
  /// An image file; for an overlay the path word of the channel that it shows.
  QString path;
  double scaleX = 1;
  double scaleY = 1;
  double x = 0.5;
  double y = 0.5;
  /// Degrees.
  float rotation = 0;
  /// 0 to 1.
  float alpha = 1;
  tagKorviaShowPresentAnimation enter;
  tagKorviaShowPresentAnimation exit{.effect = 26};

  friend bool operator==(const tagKorviaShowLogoInfo&, const tagKorviaShowLogoInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowLogoInfo)
