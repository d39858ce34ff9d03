// Makes frames from RGB images and colours: BT.709 limited range, premultiplied where they are transparent.
// Pure functions, any thread.
#pragma once
#include <QImage>
#include <array>

#include "Frame.h"

namespace korvia {

/// Y, U, V of one colour.
std::array<std::uint8_t, 3> codeValues(QRgb color);

/// The frame in the image's own size; null for a null image. Its colours are premultiplied, with and without
/// the plane of alpha.
FrameRef frameFromImage(const QImage& image, FrameAlpha alpha = FrameAlpha::None);

/// Fills columns [left, right) of the frame; `left` even. Only before the frame is published.
void fillColumns(Frame& frame, int left, int right, const std::array<std::uint8_t, 3>& values);

}  // namespace korvia
