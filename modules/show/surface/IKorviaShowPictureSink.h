// Who wants pictures of the show beside the monitors, in small and not often: the operator's page.
#pragma once
#include <QImage>

enum class KorviaShowPicture {
  Program,   ///< 640 wide or 360 high, in the show's aspect ratio; five times a second
  Channels,  ///< 960 x 405, cells of 240 x 135 in rows of four: eight media, four stages; once a second
};

class IKorviaShowPictureSink {
 public:
  /// Whether somebody looks. Engine thread, each frame at which a picture is due; it must not wait.
  virtual bool isWanted(KorviaShowPicture which) = 0;
  /// A picture in Format_RGB32. A thread for pictures alone, with a low share of the CPU.
  virtual void onPicture(KorviaShowPicture which, const QImage& picture) = 0;

 protected:
  ~IKorviaShowPictureSink() = default;
};
