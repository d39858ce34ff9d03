#include "Recipes.h"

#include <QBuffer>
#include <QFile>
#include <QImage>

#include "support/GifBytes.h"
#include "support/PdfBytes.h"

namespace korvia::test {

namespace {

/// A picture in which no two rows are alike, half of it transparent.
QByteArray picture(const char* format, QImage::Format pixels) {
  QImage image(48, 32, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x)
      image.setPixel(x, y, qRgba(x * 5, y * 7, x * y % 256, x < 24 ? 255 : x * 4));
  }
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  image.convertToFormat(pixels).save(&file, format);
  return file.data();
}

QByteArray png() {
  return picture("png", QImage::Format_ARGB32);
}

QByteArray palettePng() {
  return picture("png", QImage::Format_Indexed8);
}

QByteArray jpeg() {
  return picture("jpg", QImage::Format_RGB32);
}

QByteArray bmp() {
  return picture("bmp", QImage::Format_RGB32);
}

QByteArray webp() {
  return picture("webp", QImage::Format_ARGB32);
}

QByteArray tiff() {
  return picture("tiff", QImage::Format_ARGB32);
}

QByteArray gif() {
  return gifBytes({{GifPicture::White, 4}, {GifPicture::Transparent, 0}, {GifPicture::Red, 8}}, {20, 12}, 2);
}

QByteArray targa() {
  return QByteArray::fromHex("000002000000000000000000140014002020") + QByteArray(20 * 20 * 4, '\x55');
}

QByteArray svg() {
  return "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='36'><g transform='scale(2)'>"
         "<rect width='20' height='10' fill='red'/><path d='M0 0L10 10C1 2 3 4 5 6Z'/></g></svg>";
}

QByteArray pdf() {
  return pdfBytes({"q 1 0 0 1 10 10 cm 1 0 0 rg 0 0 50 30 re f Q 0 0 m 10 20 l 30 5 40 5 60 60 c S",
                   "BT /F1 12 Tf (text) Tj ET 0 1 0 RG 5 w 10 10 80 80 re S", pdfGrey(0.5)},
                  {200, 100});
}

QByteArray lockedPdf() {
  return pdfBytes({pdfGrey(0.5)}, {200, 100}, PdfLock::Password);
}

QByteArray text() {
  return "A text\nof two lines\twith \xc3\xa4\xe4\xb8\xad\xf0\x9f\x98\x80 and a\xcc\x88.";
}

QByteArray wideText() {
  return QByteArray::fromHex("fffe") +
         QByteArray(reinterpret_cast<const char*>(u"wide \u05d0\u0628 text"), 2 * 12);
}

/// A clip of the film tests.
QByteArray film(const char* name) {
  QFile file(QStringLiteral(MEDIA_DIR "/") + QLatin1String(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray mp4() {
  return film("sound.mp4");
}

QByteArray transportStream() {
  return film("clip25.ts");
}

QByteArray matroska() {
  return film("second.mkv");
}

QByteArray avi() {
  return film("mpeg4.avi");
}

QByteArray programStream() {
  return film("moving_top0.mpg");
}

QByteArray webm() {
  return film("alpha_vp9.webm");
}

void fillFilm(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindMovie;
  info.moviePath = path;
}

/// The damaged film twice, and between them one that is not there.
void fillFilmList(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindMovieList;
  info.movieList = QStringList{path, path + QStringLiteral(".none"), path};
}

void fillImage(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindImage;
  info.imagePath = path;
}

/// The damaged file twice, and between them one that is not there.
void fillImageList(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindImageList;
  info.imageList = QStringList{path, path + QStringLiteral(".none"), path};
}

void fillPdf(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindPdf;
  info.pdfPath = path;
}

void fillText(tagKorviaShowSourceInfo& info, const QString& path) {
  info.kind = SourceKindText;
  info.textPath = path;
  info.textParam.wrap = true;
  info.textParam.outline = true;
  info.textParam.fontSize = 40;
}

}  // namespace

const std::vector<Recipe>& recipes() {
  // clang-format off
  static const std::vector<Recipe> table{
      {"png", png, fillImage},
      {"gif", gif, fillImage},
      {"pdf", pdf, fillPdf},
      {"jpg", jpeg, fillImage},
      {"txt", text, fillText},
      {"webp", webp, fillImage},
      {"palette.png", palettePng, fillImageList},
      {"bmp", bmp, fillImage},
      {"locked.pdf", lockedPdf, fillPdf},
      {"tiff", tiff, fillImage},
      {"wide.txt", wideText, fillText},
      {"tga", targa, fillImage},
      {"svg", svg, fillImage},
      {"list.gif", gif, fillImageList},
      {"mp4", mp4, fillFilm},
      {"ts", transportStream, fillFilm},
      {"mkv", matroska, fillFilm},
      {"avi", avi, fillFilm},
      {"mpg", programStream, fillFilm},
      {"list.webm", webm, fillFilmList},
  };
  // clang-format on
  return table;
}

}  // namespace korvia::test
