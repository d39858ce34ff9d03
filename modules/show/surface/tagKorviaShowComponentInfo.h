// A component or a stage template: an animated title that comes as a package, with the texts and images that
// may be changed and the timelines that may be played. Plain values, usable from any thread.
#pragma once
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QUuid>

#include "tagKorviaShowTextInfo.h"

/// A timeline of a scene.
struct tagKorviaShowPresentTimelineInfo {
  /// Key of the timeline in the scene.
  QString name;
  /// Shown to the operator.
  QString caption;
  qint32 mode = 1;
  qint32 firstIndex = 0;
  qint32 lastIndex = -1;
  qint32 reserved = 0;

  friend bool operator==(const tagKorviaShowPresentTimelineInfo&,
                         const tagKorviaShowPresentTimelineInfo&) = default;
};

/// Where a scene lies, and the identifier of the item that shows it.
struct tagKorviaShowComponentScene {
  QString id = QUuid::createUuid().toString();
  /// Closes with a slash.
  QString projectFolder;
  QString sceneFile;
  qint32 reserved1 = 0;
  qint32 reserved2 = 0;
  qint32 reserved3 = 0;
  qint32 reserved4 = 0;
  qint32 reserved5 = 1;
  qint32 reserved6 = 0;
  qint32 reserved7 = 0;
  float reserved8 = 1;
  qint32 reserved9 = 0;
  qint32 reserved10 = 0;
  qint32 reserved11 = 0;
  qint32 reserved12 = 0;
  qint32 reserved13 = 0;
  qint32 reserved14 = 0;
  qint32 reserved15 = 0;
  qint32 reserved16 = 0;
  qint64 reserved17 = 0;

  friend bool operator==(const tagKorviaShowComponentScene&, const tagKorviaShowComponentScene&) = default;
};

/// One text or image of a component that may be changed.
struct tagKorviaComponentItemParam {
  /// Shown to the operator.
  QString caption;
  /// Name of the node in the scene.
  QString node;
  /// The text, or the path of the image.
  QString value;
  QStringList values;
  /// The look of a text; an image does not read it.
  tagKorviaShowTextInfo textInfo;

  friend bool operator==(const tagKorviaComponentItemParam&, const tagKorviaComponentItemParam&) = default;
};

struct tagKorviaShowComponentInfo {
  QString name;
  QString category;
  tagKorviaShowComponentScene scene;
  tagKorviaShowPresentTimelineInfo enterTimeline;
  tagKorviaShowPresentTimelineInfo exitTimeline;
  QList<tagKorviaComponentItemParam> texts;
  QList<tagKorviaComponentItemParam> images;
  QList<tagKorviaShowPresentTimelineInfo> actions;

  friend bool operator==(const tagKorviaShowComponentInfo&, const tagKorviaShowComponentInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowPresentTimelineInfo)
Q_DECLARE_METATYPE(tagKorviaShowComponentInfo)
