// Makes the source of a record. Console thread.
#pragma once
#include <memory>

#include "Source.h"

namespace korvia {

/// A source of the record's kind, which begins to open; null with a log line for a kind that the engine
/// lacks.
std::shared_ptr<Source> createSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                     const tagKorviaFormatInfo& format);

}  // namespace korvia
