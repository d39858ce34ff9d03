// A property of a GStreamer element as text, for tables. A plain value, any thread.
#pragma once

namespace korvia {

struct ElementProperty {
  const char* name;
  const char* value;
};

}  // namespace korvia
