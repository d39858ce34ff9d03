// Properties of GStreamer elements as text, so that tables of them are data.
#pragma once

namespace korvia {

struct ElementProperty {
  const char* name;
  const char* value;
};

}  // namespace korvia
