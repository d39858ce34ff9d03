#include "ItemStage.h"

#include "engine/frame/FrameFit.h"

namespace korvia {

namespace {

const QString kPaintPadKey = QStringLiteral("paint pad");

LayerRef drawingLayer(const QImage& image, FrameSize size) {
  if (image.isNull() || size.isEmpty())
    return {};
  const FrameRect rect = fitRect({image.width(), image.height()}, 1, 1, size);
  const QImage fitted =
      image.size() == QSize(rect.width, rect.height)
          ? image
          : image.scaled(rect.width, rect.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return Layer::make(fitted, {rect.x, rect.y}, size);
}

}  // namespace

void ItemStage::commitPaintPad(const QImage& image) {
  FrameSize size;
  {
    MutexLock lock(sizeMutex_);
    size = size_;
  }
  raster_.request(kPaintPadKey, [image, size] { return drawingLayer(image, size); });
}

void ItemStage::setPaintPadValid(bool valid) {
  paintPadValid_ = valid;
  if (!valid)
    raster_.withdraw(kPaintPadKey);
}

void ItemStage::open(const ShowFormat& format) {
  rate_ = format.rate;
  texts_.open(format.size);
  MutexLock lock(sizeMutex_);
  size_ = format.size;
}

void ItemStage::beginFrame(int ticks) {
  raster_.collect(drawn_);
  for (RasterWorker::Drawn& drawn : drawn_) {
    // The old layer goes back to the worker, which destroys it.
    if (drawn.key == kPaintPadKey)
      paintPad_.swap(drawn.layer);
    else
      texts_.take(drawn);
  }
  if (!texts_.isEmpty())
    texts_.beginFrame(QDateTime::currentDateTime(), static_cast<double>(rate_.nsOf(ticks)) * 1e-6, drawn_);
  if (paintPadValid_ && paintPad_)
    pgm_.layers().put(LayerKind::PaintPad, kPaintPadKey, paintPad_);
  else
    pgm_.layers().remove(LayerKind::PaintPad, kPaintPadKey);
}

}  // namespace korvia
