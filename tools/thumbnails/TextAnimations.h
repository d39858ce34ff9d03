// The entrances and exits of texts. Their names are also those of the files of their pictures. Any thread.
#pragma once
#include <array>

#include "engine/items/ItemAnimation.h"

namespace korvia {

struct TextAnimation {
  /// The number of the effect. Exits begin at kFirstExit.
  int effect;
  const char* name;
};

inline constexpr std::array kTextEntrances{
    TextAnimation{0, "Appear"},
    TextAnimation{1, "FlyInFromTop"},
    TextAnimation{2, "FlyInFromBottom"},
    TextAnimation{3, "FlyInFromLeft"},
    TextAnimation{4, "FlyInFromRight"},
    TextAnimation{5, "FlyInFromTopLeft"},
    TextAnimation{6, "FlyInFromTopRight"},
    TextAnimation{7, "FloatFromTopLeft"},
    TextAnimation{8, "FloatFromTopRight"},
    TextAnimation{9, "Glide"},
    TextAnimation{10, "Magnify"},
    TextAnimation{11, "Pinwheel"},
    TextAnimation{12, "Sling"},
    TextAnimation{13, "Thread"},
    TextAnimation{14, "Zoom"},
    TextAnimation{15, "Ascend"},
    TextAnimation{16, "Descend"},
};

/// The exits to the top and the bottom are called FlyIn too: the operator knows them by these names.
inline constexpr std::array kTextExits{
    TextAnimation{26, "Appear"},
    TextAnimation{27, "FlyInFromTop"},
    TextAnimation{28, "FlyInFromBottom"},
    TextAnimation{29, "FlyOutToLeft"},
    TextAnimation{30, "FlyOutToRight"},
    TextAnimation{31, "FlyOutToTopLeft"},
    TextAnimation{32, "FlyOutToTopRight"},
    TextAnimation{33, "FloatFromTopLeft"},
    TextAnimation{34, "FloatFromTopRight"},
    TextAnimation{35, "Glide"},
    TextAnimation{36, "Magnify"},
    TextAnimation{37, "Pinwheel"},
    TextAnimation{38, "Sling"},
    TextAnimation{39, "Thread"},
    TextAnimation{40, "Zoom"},
    TextAnimation{41, "Ascend"},
    TextAnimation{42, "Descend"},
};

}  // namespace korvia
