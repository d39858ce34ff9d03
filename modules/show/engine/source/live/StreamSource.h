// Makes the sources of streams from the network. Console thread.
#pragma once
#include <memory>

#include "engine/source/Source.h"

namespace korvia {

/// Receives `info.url`; a file of this machine is a film that begins again at its end.
std::shared_ptr<Source> makeUrlSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                      const tagKorviaFormatInfo& format);

/// Receives what is pushed to this machine's income server under `info.incomePath`.
std::shared_ptr<Source> makeIncomeSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format);

}  // namespace korvia
