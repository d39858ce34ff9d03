// Draws a text with its look on a picture of its own. Any thread; needs a QGuiApplication.
#pragma once
#include <QImage>

#include "tagKorviaShowRenderTextParam.h"

namespace korvia {

/// The text on a transparent, premultiplied ARGB picture of exactly this size in pixels, each side at most
/// 8192; a null picture for a side below 1 or when memory is short.
QImage drawTextPicture(int width, int height, const tagKorviaShowRenderTextParam& param);

}  // namespace korvia
