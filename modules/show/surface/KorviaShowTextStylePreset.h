// The looks of text items that the style editor offers.
#pragma once
#include <QtGlobal>

/// The numbers stand in records.
enum KorviaShowTextStylePreset : qint32 {
  TextStyleDefault = 0,
  TextStyleSolidWhite = 1,
  TextStyleSolidBlack = 2,
  TextStyleSolidRed = 3,
  TextStyleSolidGreen = 4,
  TextStyleSolidBlue = 5,
  TextStyleSolidShadowWhite = 6,
  TextStyleSolidShadowBlack = 7,
  TextStyleSolidShadowRed = 8,
  TextStyleSolidShadowGreen = 9,
  TextStyleSolidShadowBlue = 10,
  TextStyleSolidOutlineWhite = 11,
  TextStyleSolidOutlineBlack = 12,
  TextStyleSolidOutlineRed = 13,
  TextStyleSolidOutlineGreen = 14,
  TextStyleSolidOutlineBlue = 15,
  TextStyleOutlineWhite = 16,
  TextStyleOutlineBlack = 17,
  TextStyleOutlineRed = 18,
  TextStyleOutlineGreen = 19,
  TextStyleOutlineBlue = 20,
  TextStyleGradientWhite = 21,
  TextStyleGradientBlack = 22,
  TextStyleGradientRed = 23,
  TextStyleGradientGreen = 24,
  TextStyleGradientBlue = 25,
  TextStyleGradientYellow = 26,
  TextStyleTexture0001 = 27,
  TextStyleTexture0002 = 28,
  TextStyleTexture0003 = 29,
  TextStyleTexture0004 = 30,
};
