// The look of karaoke lyrics. A plain value, usable from any thread.
#pragma once
#include <QColor>
#include <QMetaType>
#include <QString>

/// The colour sets that are offered for lyrics.
enum GShowKaroakeTextColorPreset : qint32 {
  KaroakeTextRed = 0,
  KaroakeTextWhiteBlack = 1,
  KaroakeTextBlue = 2,
  KaroakeTextCoolBlack = 3,
  KaroakeTextYellow = 4,
  KaroakeTextPurple = 5,
  KaroakeTextGreen = 6,
};

struct tagGShowKaroakeTextParam {
  QString fontName = QStringLiteral("Microsoft YaHei Bold & Microsoft YaHei UI Bold");
  qint32 fontSize = 45;
  GShowKaroakeTextColorPreset colorPreset = KaroakeTextPurple;
  /// Syllables fade from the upper to the lower colour; a syllable turns from unplayed to played as it is
  /// sung.
  QColor unplayedUpperColor = QColor(64, 0, 128, 255);
  QColor unplayedLowerColor = QColor(64, 0, 128, 255);
  QColor playedUpperColor = QColor(255, 55, 146, 255);
  QColor playedLowerColor = QColor(255, 55, 146, 255);
  QColor borderColor = QColor(255, 172, 0, 255);
  qint32 reserved = 64;

  friend bool operator==(const tagGShowKaroakeTextParam&, const tagGShowKaroakeTextParam&) = default;
};

Q_DECLARE_METATYPE(tagGShowKaroakeTextParam)
