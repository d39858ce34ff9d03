// A text item. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>
#include <QUuid>

#include "tagKorviaShowPresentAnimation.h"
#include "tagKorviaShowTextStyle.h"

/// Positions and sizes are fractions of the picture, 0.5 is the middle. `x` and `y` are the centre of the
/// item, of a crawl its line; sizes of the style are pixels of a picture of 1080 lines.
struct tagKorviaShowTextInfo {
  QString id = QUuid::createUuid().toString();
  /// May hold ${Time} and line breaks.
  QString text = QStringLiteral("Time: ${Time}");
  /// QDateTime format of ${Time}.
  QString timeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");
  double x = 0.5;
  double y = 0.5;
  /// Of the box; 0 measures the text.
  double width = 0;
  double height = 0;
  /// 1 left, 2 right, else centre. With 0x20 or 0x40 it also means top or bottom, in place of `vAlign`.
  qint32 hAlign = 1;
  /// 0x20 top, 0x40 bottom, else middle.
  qint32 vAlign = 0x84;
  /// A crawl begins with its leading edge at `x` and ends with its trailing edge here, and begins again.
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
