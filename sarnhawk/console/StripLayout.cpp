#include "console/StripLayout.h"

#include <QCoreApplication>
#include <iterator>

namespace {

constexpr StripLayout kLayouts[] = {
    {QT_TRANSLATE_NOOP("StripLayout", "4 Media Channel , 0 Stage Channel"), 4, 4, 0},
    {QT_TRANSLATE_NOOP("StripLayout", "3 Media Channel , 1 Stage Channel"), 4, 3, 1},
    {QT_TRANSLATE_NOOP("StripLayout", "6 Media Channel , 0 Stage Channel"), 6, 6, 0},
    {QT_TRANSLATE_NOOP("StripLayout", "4 Media Channel , 2 Stage Channel"), 6, 4, 2},
    {QT_TRANSLATE_NOOP("StripLayout", "8 Media Channel , 0 Stage Channel"), 8, 8, 0},
    {QT_TRANSLATE_NOOP("StripLayout", "6 Media Channel , 2 Stage Channel"), 8, 6, 2},
    {QT_TRANSLATE_NOOP("StripLayout", "4 Media Channel , 4 Stage Channel"), 8, 4, 4},
};

}  // namespace

const StripLayout* StripLayout::find(int mode) {
  if (mode < 0 || mode >= static_cast<int>(std::size(kLayouts)))
    return nullptr;
  return &kLayouts[mode];
}
