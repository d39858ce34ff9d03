// A text and its look, for a text source. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>

/// One horizontal and one vertical bit are combined. These are not Qt's values.
enum KorviaShowTextAlign : qint32 {
  TextAlignLeft = 0x01,
  TextAlignRight = 0x02,
  TextAlignCenter = 0x04,
  TextAlignTop = 0x20,
  TextAlignBottom = 0x40,
  TextAlignMiddle = 0x80,
};

/// Colours are ARGB words; sizes are pixels of the picture, the angle is in degrees.
struct tagKorviaShowRenderTextParam {
  qint32 alignment = TextAlignLeft | TextAlignTop;
  bool vertical = false;
  qint32 fontSize = 14;
  QString fontName = QStringLiteral("Arial");
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool wrap = false;
  bool outline = false;
  qint32 outlineSize = 2;
  quint32 outlineColor = 0xFF000000;
  qint32 gradientAngle = 90;
  quint32 gradientBeginColor = 0xFFFF0000;
  quint32 gradientEndColor = 0xFFFF0000;
  QString text = QStringLiteral("Sample Text");

  friend bool operator==(const tagKorviaShowRenderTextParam&, const tagKorviaShowRenderTextParam&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowRenderTextParam)
