// The picture formats of DeckLink cards. Pure functions, any thread.
#pragma once
#include <QString>
#include <optional>

#include "DeviceSettings.h"

namespace korvia {

struct SdiMode {
  const char* nick;  ///< the value of the property "mode" of decklinkvideosink
  DevicePicture picture;
};

/// The mode of a format as the console lists it ("1080p25", "1080i5994", "pal") or as people write it
/// ("1080i59.94", "1080 P 25"). Nothing for an unknown one.
std::optional<SdiMode> findSdiMode(const QString& format);

/// The colours that such a picture has on the cable, in the words of GStreamer: those of standard definition,
/// of high definition, or of ultra high definition.
const char* sdiColorimetry(const DevicePicture& picture);

}  // namespace korvia
