// The catalogue of source kinds. Console thread.
#pragma once
#include <memory>

#include "Source.h"

namespace korvia {

/// A source of the record's kind, already opening; null with a log line for a kind that the engine lacks.
std::shared_ptr<Source> createSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                     const tagKorviaFormatInfo& format);

}  // namespace korvia
