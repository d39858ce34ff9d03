#include "console/MediaFileChooser.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>

#include "tagKorviaShowChannelSlot.h"

namespace {

const QStringList kPictureSuffixes{"png", "jpg", "jpeg", "bmp", "gif", "webp", "tif", "tiff", "tga", "svg"};
const QStringList kFilmSuffixes{"mp4", "mov",  "mkv", "flv",  "ts", "m2ts",
                                "mpg", "mpeg", "avi", "webm", "wmv"};

QString filter(const char* text, const QStringList& suffixes) {
  return QCoreApplication::translate("MediaFileChooser", text) + QStringLiteral(" (*.") +
         suffixes.join(QStringLiteral(" *.")) + QLatin1Char(')');
}

}  // namespace

bool MediaFileChooser::choose(QWidget* parent, tagKorviaShowChannelSlot& slot) {
  const QString filters =
      filter(QT_TRANSLATE_NOOP("MediaFileChooser", "Films and pictures"), kFilmSuffixes + kPictureSuffixes) +
      QStringLiteral(";;") + filter(QT_TRANSLATE_NOOP("MediaFileChooser", "Films"), kFilmSuffixes) +
      QStringLiteral(";;") + filter(QT_TRANSLATE_NOOP("MediaFileChooser", "Pictures"), kPictureSuffixes) +
      QStringLiteral(";;") + QCoreApplication::translate("MediaFileChooser", "All files") +
      QStringLiteral(" (*)");
  const QString& before = slot.source.kind == SourceKindImage ? slot.source.imagePath : slot.source.moviePath;
  const QString path = QFileDialog::getOpenFileName(
      parent, QCoreApplication::translate("MediaFileChooser", "Open Media"), before, filters);
  if (path.isEmpty())
    return false;
  fillSlot(path, slot);
  return true;
}

void MediaFileChooser::fillSlot(const QString& path, tagKorviaShowChannelSlot& slot) {
  const QFileInfo file(path);
  slot.name = file.fileName();
  if (kPictureSuffixes.contains(file.suffix().toLower())) {
    slot.source.kind = SourceKindImage;
    slot.source.imagePath = path;
  } else {
    slot.source.kind = SourceKindMovie;
    slot.source.moviePath = path;
  }
}
