// A picture file in any format that Qt reads. Its kind and its size are asked before anything is decoded, and
// the file stays open, so that an animation that loops does not need its name again. One thread at a time.
#pragma once
#include <QFile>
#include <QImageReader>
#include <memory>

#include "engine/frame/Frame.h"

namespace korvia {

/// A picture in the render size, and the size that it has in its file.
struct FittedPicture {
  FrameRef frame;
  FrameSize fileSize;
};

class PictureFile {
 public:
  /// Opens the file at a drive path or path; false with a reason for what is no file or cannot be read.
  bool open(const QString& path, QString& reason);
  /// A reader that stands before the first picture and turns pictures upright; null with a reason when the
  /// file is no picture, or a larger one than may be read. It must not outlive this object.
  std::unique_ptr<QImageReader> reader(QString& reason);
  /// The first picture, fitted into `renderSize`; without a frame and with a reason when it cannot be read.
  FittedPicture read(FrameSize renderSize, QString& reason);

 private:
  /// The size that pictures of these formats have in memory; of other formats an empty one.
  QSize sizeInHeader();

  QFile file_;
  bool targa_ = false;
};

/// None when the image has no alpha channel, or one that is opaque everywhere, as many programs write it.
FrameAlpha alphaOf(const QImage& image);

/// The image scaled into the frame with its aspect ratio kept, black around; transparent around when `target`
/// has alpha. False when there is not enough memory.
bool fitImage(const QImage& image, Frame& target);

}  // namespace korvia
