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

/// Whether the picture has the colours of standard definition (BT.601) and not those of BT.709.
bool isStandardDefinition(const DevicePicture& picture);

}  // namespace korvia
