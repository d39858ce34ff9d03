// Converts a row from BT.709 limited range to RGB. Pure function, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// `width` samples of luma and of both chroma planes (chroma at full width) become 32-bit BGRX pixels, alpha
/// 255, within one code value of the exact conversion.
void rowToRgb(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v, std::uint32_t* pixels,
              int width);

}  // namespace korvia
