// Describes the product. The host fills it and the console copies it whole. Plain data, any thread.
#pragma once
#include <QString>
#include <cstdint>

struct tagKorviaProductInfo {
  std::int32_t size = 4880;
  char16_t title[256] = {};  ///< NUL-terminated, as all texts here
  char16_t description[1024] = {};
  char16_t versionPrefix[128] = {};
  char16_t linkText[256] = {};
  char16_t linkTarget[512] = {};
  std::uint8_t reserved[524] = {};
};
static_assert(sizeof(tagKorviaProductInfo) == 4880);
static_assert(offsetof(tagKorviaProductInfo, title) == 4);

/// Text of a field of the record up to the first NUL, or the whole field without one.
template <std::size_t N>
QString productText(const char16_t (&field)[N]) {
  std::size_t length = 0;
  while (length < N && field[length] != u'\0')
    ++length;
  return QString::fromUtf16(field, static_cast<int>(length));
}
