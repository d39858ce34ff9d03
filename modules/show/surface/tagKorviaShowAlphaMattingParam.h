// How the background of a channel's picture is keyed out. A plain value, usable from any thread.
#pragma once
#include <QColor>
#include <QMetaType>
#include <QString>

enum KorviaShowAlphaMattingMode : qint32 {
  AlphaMattingOff = 0,
  AlphaMattingAiAuto = 1,
  AlphaMattingMaskFile = 2,
  AlphaMattingChromaKey = 3,
};

/// Each mode reads its own fields; the others keep their values. Radii and distances are pixels.
struct tagKorviaShowAlphaMattingParam {
  /// A KorviaShowAlphaMattingMode.
  qint32 mode = AlphaMattingOff;
  qint32 preBlur = 0;
  QColor keyColor = QColor::fromRgba(0xFF00FF00);
  float screenBalance = 0.5F;
  qint32 edgeRadius = 3;
  float edgeTolerance = 0.1F;
  float clipBlack = 0.0F;
  float clipWhite = 1.0F;
  qint32 postBlur = 0;
  qint32 dilateDistance = 0;
  qint32 featherDistance = 0;
  qint32 reserved1 = 0;
  float despillFactor = 1.0F;
  float despillBalance = 0.5F;
  QString maskFile;
  float aiScreenBalance = 0.1F;
  qint32 aiEdgeRadius = 3;
  float aiEdgeTolerance = 0.1F;
  float aiClipBlack = 0.0F;
  float aiClipWhite = 1.0F;
  qint32 aiPostBlur = 0;
  qint32 aiDilateDistance = 0;
  qint32 aiFeatherDistance = 0;
  qint32 reserved2 = 0;
  float aiDespillFactor = 1.0F;
  float aiDespillBalance = 0.5F;

  friend bool operator==(const tagKorviaShowAlphaMattingParam&,
                         const tagKorviaShowAlphaMattingParam&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowAlphaMattingParam)
