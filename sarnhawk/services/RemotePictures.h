// Encodes the pictures of the show for the viewers of the web server, once for all of them. Called on the
// engine's threads, as IKorviaShowPictureSink says.
#pragma once
#include "IKorviaShowPictureSink.h"

class RemotePictures final : public IKorviaShowPictureSink {
 public:
  bool isWanted(KorviaShowPicture which) override;
  void onPicture(KorviaShowPicture which, const QImage& picture) override;
};
