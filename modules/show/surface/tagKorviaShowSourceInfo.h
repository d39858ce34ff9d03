// What a channel shows: one kind and the fields of every kind, so that a record keeps the last values of each
// kind it ever held. Plain values, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>
#include <QStringList>

#include "tagKorviaShowRenderTextParam.h"
#include "tagKorviaWindowHWNDInfo.h"

/// The kinds of source, as stored in the `kind` field.
enum KorviaShowSourceKind : qint32 {
  SourceKindNone = 0,
  SourceKindMovie = 1,
  SourceKindMovieList = 2,
  SourceKindUrl = 3,
  SourceKindKrmp = 4,
  SourceKindImage = 5,
  SourceKindImageList = 6,
  SourceKindDevice = 7,
  SourceKindDevice3D = 8,
  SourceKindColor = 9,
  SourceKindDelay = 10,
  SourceKindFlash = 11,
  SourceKindWeb = 12,
  SourceKindOffice = 13,
  SourceKindPdf = 14,
  SourceKindText = 15,
  SourceKindWindow = 16,
  SourceKindScreen = 17,
  SourceKindIncome = 18,
};

/// What a film does at its end.
enum KorviaShowEndAction : qint32 { EndActionStop = 0, EndActionLoop = 1, EndActionStopAndSwitch = 2 };

/// What a film does when its channel goes to or from program.
enum KorviaShowPGMAction : qint32 { PGMActionNone = 0, PGMActionPlay = 1, PGMActionPauseResume = 2 };

struct tagKorviaShowSourceInfo {
  /// A KorviaShowSourceKind. Stays the first field: the transport reads the kind at the head of the record.
  qint32 kind = SourceKindNone;
  QString moviePath;
  qint32 movieEndAction = EndActionLoop;
  /// Channel id to switch to at the end, with EndActionStopAndSwitch.
  qint32 movieSwitchChannel = 0;
  qint32 moviePGMAction = PGMActionNone;
  QStringList movieList;
  qint32 listEndAction = EndActionLoop;
  qint32 listSwitchChannel = 0;
  qint32 listPGMAction = PGMActionNone;
  QString url;
  /// Milliseconds.
  qint32 urlCache = 1000;
  QString krmpUrl;
  quint8 krmpDecoder = 0;
  quint8 krmpRealtime = 0;
  QString imagePath;
  QStringList imageList;
  QString videoDevName;
  QString videoDevId;
  QString videoDevConnType;
  quint8 reserved1 = 0;
  QString reserved2;
  QString audioDevName;
  QString audioDevId;
  qint32 sdiCardIndex = 0;
  QString sdiFormat = QStringLiteral("1080p25");
  QString sdiVideoSignal = QStringLiteral("SDI");
  QString sdiAudioSignal = QStringLiteral("embedded");
  /// Bars instead of the colour when not 0.
  quint8 colorBar = 0;
  /// ARGB word.
  quint32 color = 0xFFFFFFFF;
  /// Object id of the channel that is shown late.
  qint32 delayChannel = 1;
  QString delayCachePath;
  /// Milliseconds.
  qint32 delayTime = 30000;
  QString flashPath;
  QString webUrl;
  QString officePath;
  QString pdfPath;
  QString reserved3;
  QString textPath;
  tagKorviaShowRenderTextParam textParam;
  tagKorviaWindowHWNDInfo windowInfo;
  qint32 screenIndex = 0;
  QString incomePath;
  quint8 incomeDecoder = 0;
  quint8 incomeRealtime = 0;
  qint32 audioProcessFilter = 0;

  friend bool operator==(const tagKorviaShowSourceInfo&, const tagKorviaShowSourceInfo&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowSourceInfo)
