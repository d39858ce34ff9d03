// Measures, colours and font of the sheets that show many pictures. Pure functions, any thread.
#pragma once
#include <QFont>
#include <QRgb>

namespace korvia {

inline constexpr int kSheetMargin = 14;
inline constexpr int kSheetGap = 4;
inline constexpr int kSheetBlockGap = 22;

// Colours of window, text and muted text in the console's style sheet.
inline constexpr QRgb kSheetWindow = 0xff14171c;
inline constexpr QRgb kSheetText = 0xffd7dce3;
inline constexpr QRgb kSheetMuted = 0xff8b95a3;

inline constexpr int kSheetNamePixels = 13;
inline constexpr int kSheetNotePixels = 12;

inline QFont sheetFont(int pixels) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(pixels);
  return font;
}

}  // namespace korvia
