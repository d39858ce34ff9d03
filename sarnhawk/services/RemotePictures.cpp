#include "services/RemotePictures.h"

#include <QBuffer>

#include "WebDesk.h"

namespace {

// At these sizes a higher quality shows no difference on a phone, and takes twice the bytes.
constexpr int kJpegQuality = 75;

korvia::PictureBoard& boardOf(KorviaShowPicture which) {
  korvia::WebDesk& desk = korvia::WebDesk::instance();
  return which == KorviaShowPicture::Program ? desk.program() : desk.channels();
}

}  // namespace

bool RemotePictures::isWanted(KorviaShowPicture which) {
  return boardOf(which).isWanted();
}

void RemotePictures::onPicture(KorviaShowPicture which, const QImage& picture) {
  QByteArray jpeg;
  QBuffer buffer(&jpeg);
  buffer.open(QIODevice::WriteOnly);
  if (picture.save(&buffer, "JPG", kJpegQuality))
    boardOf(which).publish(jpeg);
}
