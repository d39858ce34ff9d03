// The picture file that a text is filled with, kept until another one is asked for or the file changes. One
// thread.
#pragma once
#include <QDateTime>
#include <QImage>
#include <QString>

namespace korvia {

class TexturePicture {
 public:
  /// The picture at a drive path or path, premultiplied, at most 4096 pixels a side; it is cropped to that.
  /// Null, with a line in the log the first time, for what is no picture, is cut off, or has more than 64
  /// megapixels.
  const QImage& picture(const QString& path);

 private:
  QString path_;
  QDateTime modified_;
  qint64 bytes_ = -1;
  QImage picture_;
};

}  // namespace korvia
