#include "sources/MediaFiles.h"

#include <QFileInfo>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

#include "KorviaShowUtil.h"
#include "tagKorviaShowChannelSlot.h"

namespace {

const QStringList kPictureSuffixes{"png", "jpg", "jpeg", "bmp", "gif", "webp", "tif", "tiff", "tga", "svg"};

/// The address of a stream, such as "srt://127.0.0.1:9000"; not "d:/films".
bool isAddress(const QString& path) {
  static const QRegularExpression scheme(QStringLiteral("^[a-z]{2,}://"));
  return scheme.match(path).hasMatch();
}

KorviaShowSourceKind kindOf(const QString& path) {
  if (isAddress(path))
    return SourceKindUrl;
  const QString suffix = QFileInfo(path).suffix().toLower();
  if (kPictureSuffixes.contains(suffix))
    return SourceKindImage;
  if (suffix == QLatin1String("pdf"))
    return SourceKindPdf;
  return suffix == QLatin1String("txt") ? SourceKindText : SourceKindMovie;
}

QString textOf(const QString& path) {
  QString text;
  QString reason;
  if (!KorviaShowUtil::readTextFile(path, text, reason))
    qDebug("failed to read text : %s : %s", qUtf8Printable(path), qUtf8Printable(reason));
  return text;
}

}  // namespace

void MediaFiles::fillSlot(const QString& path, tagKorviaShowChannelSlot& slot) {
  slot.name = QFileInfo(path).fileName();
  slot.source.kind = kindOf(path);
  switch (slot.source.kind) {
    case SourceKindImage:
      slot.source.imagePath = path;
      break;
    case SourceKindPdf:
      slot.source.pdfPath = path;
      break;
    case SourceKindText:
      slot.source.textPath = path;
      slot.source.textParam.text = textOf(path);
      break;
    case SourceKindUrl:
      slot.name = path;
      slot.source.url = path;
      break;
    default:
      slot.source.moviePath = path;
      break;
  }
}

void MediaFiles::fillSlot(const QStringList& paths, tagKorviaShowChannelSlot& slot) {
  if (paths.isEmpty())
    return;
  const KorviaShowSourceKind kind = kindOf(paths.first());
  QStringList alike;
  for (const QString& path : paths) {
    if (kindOf(path) == kind)
      alike.append(path);
  }
  const bool isList = alike.size() > 1 && (kind == SourceKindMovie || kind == SourceKindImage);
  if (!isList)
    return fillSlot(paths.first(), slot);
  slot.name = QFileInfo(paths.first()).fileName();
  slot.source.kind = kind == SourceKindMovie ? SourceKindMovieList : SourceKindImageList;
  (kind == SourceKindMovie ? slot.source.movieList : slot.source.imageList) = alike;
}

bool MediaFiles::isPicture(const QString& path) {
  return kindOf(path) == SourceKindImage;
}

bool MediaFiles::isFilm(const QString& path) {
  return kindOf(path) == SourceKindMovie;
}

QStringList MediaFiles::filesOf(const QMimeData* data) {
  QStringList files;
  const QList<QUrl> urls = data->urls();
  for (const QUrl& url : urls) {
    if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile())
      files.append(url.toLocalFile());
  }
  return files;
}
