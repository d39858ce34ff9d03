#include "console/SourceText.h"

#include <QCoreApplication>
#include <iterator>

#include "tagKorviaShowSourceInfo.h"

namespace {

constexpr const char* kKindNames[] = {
    "",
    QT_TRANSLATE_NOOP("SourceText", "Movie"),
    QT_TRANSLATE_NOOP("SourceText", "MovieList"),
    QT_TRANSLATE_NOOP("SourceText", "URL"),
    QT_TRANSLATE_NOOP("SourceText", "KRMP"),
    QT_TRANSLATE_NOOP("SourceText", "Image"),
    QT_TRANSLATE_NOOP("SourceText", "ImageList"),
    QT_TRANSLATE_NOOP("SourceText", "Device"),
    QT_TRANSLATE_NOOP("SourceText", "3D Device"),
    QT_TRANSLATE_NOOP("SourceText", "Color"),
    QT_TRANSLATE_NOOP("SourceText", "Delay"),
    QT_TRANSLATE_NOOP("SourceText", "Flash"),
    QT_TRANSLATE_NOOP("SourceText", "Web"),
    QT_TRANSLATE_NOOP("SourceText", "Office"),
    QT_TRANSLATE_NOOP("SourceText", "PDF"),
    QT_TRANSLATE_NOOP("SourceText", "Text"),
    QT_TRANSLATE_NOOP("SourceText", "Window"),
    QT_TRANSLATE_NOOP("SourceText", "Screen"),
    QT_TRANSLATE_NOOP("SourceText", "Income"),
};
static_assert(std::size(kKindNames) == SourceKindIncome + 1);

QString filePath(const tagKorviaShowSourceInfo& source) {
  switch (source.kind) {
    case SourceKindMovie:
      return source.moviePath;
    case SourceKindImage:
      return source.imagePath;
    case SourceKindFlash:
      return source.flashPath;
    case SourceKindOffice:
      return source.officePath;
    case SourceKindPdf:
      return source.pdfPath;
    case SourceKindText:
      return source.textPath;
    default:
      return QString();
  }
}

}  // namespace

QString SourceText::kindName(int kind) {
  if (kind <= SourceKindNone || kind >= static_cast<int>(std::size(kKindNames)))
    return QString();
  return QCoreApplication::translate("SourceText", kKindNames[kind]);
}

QString SourceText::fileName(const tagKorviaShowSourceInfo& source) {
  // A path may use either separator.
  const QString path = QString(filePath(source)).replace(QLatin1Char('\\'), QLatin1Char('/'));
  return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}
