// Makes the sources of web pages, windows and screens, which a program of their own captures. Console thread.
#pragma once
#include <memory>

#include "engine/source/Source.h"

namespace korvia {

/// Shows `info.webUrl`, drawn in the size that the format of the source states.
std::shared_ptr<Source> makePageSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                       const tagKorviaFormatInfo& format);

/// Shows the window `info.windowInfo`, or when that is gone one of the same program.
std::shared_ptr<Source> makeWindowSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format);

/// Shows the screen `info.screenIndex`.
std::shared_ptr<Source> makeScreenSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format);

}  // namespace korvia
