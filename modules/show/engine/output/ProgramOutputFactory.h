// The catalogue of outputs. Engine thread.
#pragma once
#include <memory>

#include "ProgramOutput.h"

namespace korvia {

/// The output of a slot (a KorviaShowOutputSlot), already starting. The picture has the size of `format`, or the
/// render size when that is not usable; the frame rate is that of the engine, in frames per second. Null with a
/// log line for a slot that is not available.
std::unique_ptr<ProgramOutput> createProgramOutput(int slot, const tagKorviaShowOutputParam& param,
                                                   const QString& programName, const tagKorviaFormatInfo& format,
                                                   FrameSize renderSize, int rateNumerator, int rateDenominator);

}  // namespace korvia
