#include "ProductRecord.h"

#include <algorithm>
#include <string_view>

namespace {

/// A text that is too long is cut, so that the field always ends in a NUL.
template <std::size_t N>
void setText(char16_t (&field)[N], std::u16string_view text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.data(), length, field);
  field[length] = u'\0';
}

}  // namespace

tagKorviaProductInfo makeProductRecord() {
  tagKorviaProductInfo product;
  setText(product.title, u"Korvia Sarnhawk");
  setText(product.description, u"Live video switcher for one operator at a desk");
  setText(product.versionPrefix, u"Sarnhawk");
  setText(product.linkText, u"The Korvia Sarnhawk authors");
  setText(product.linkTarget, u"https://sarnhawk.korvia.example/");
  return product;
}
