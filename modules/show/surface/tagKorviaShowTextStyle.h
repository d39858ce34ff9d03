// The look of a text item. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>

enum KorviaShowTextColorMode : qint32 { TextColorSolid = 0, TextColorGradient = 1, TextColorTexture = 2 };

/// Colours are ARGB words; sizes, distances and blurs are pixels of a picture of 1080 lines. A shadow with a
/// positive distance lies to the right and above.
struct tagKorviaShowTextStyle {
  /// The preset that was chosen last.
  qint32 preset = 0;
  QString fontName = QStringLiteral("Microsoft YaHei Bold & Microsoft YaHei UI Bold");
  qint32 fontSize = 40;
  /// A KorviaShowTextColorMode.
  qint32 colorMode = TextColorSolid;
  quint32 solidColor = 0xFFFFFFFF;
  quint32 gradientBeginColor = 0xFF0000FF;
  quint32 gradientEndColor = 0xFFFF0000;
  QString texturePath;
  quint32 shadowColor = 0xFFA0A0A4;
  qint32 shadowDistanceX = 2;
  qint32 shadowDistanceY = -2;
  float shadowBlur = 2;
  quint32 outlineColor = 0xFFFFFF00;
  qint32 outlineSize = 2;
  float outlineBlur = 2;

  friend bool operator==(const tagKorviaShowTextStyle&, const tagKorviaShowTextStyle&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowTextStyle)
