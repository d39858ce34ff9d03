// What lies behind a channel's keyed picture. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>

enum KorviaShowChannelBackgroundType : qint32 {
  ChannelBackgroundColor = 0,
  ChannelBackgroundImage = 1,
  ChannelBackgroundVideo = 2,
};

struct tagKorviaShowChannelBackgroundInfo {
  /// A KorviaShowChannelBackgroundType.
  qint32 type = ChannelBackgroundColor;
  /// ARGB word; opaque black, which is also what program shows without a source.
  quint32 color = 0xFF000000;
  QString imagePath;
  QString videoPath;

  friend bool operator==(const tagKorviaShowChannelBackgroundInfo&,
                         const tagKorviaShowChannelBackgroundInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowChannelBackgroundInfo)
