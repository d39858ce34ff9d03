// What is needed to start one output, the stream or the recording. A plain value.
#pragma once
#include <QString>
#include <memory>

#include "EncoderTrials.h"
#include "FrameRate.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

struct OutputRequest {
  int slot = OutputSlotRecord;
  tagKorviaShowOutputParam param;  ///< settings of all outputs; `slot` is the index of this one
  QString programName;             ///< for the name of a recording
  /// The size of the encoded picture, and whether there is sound, are taken from it.
  tagKorviaFormatInfo format;
  FrameRate rate;      ///< the show's, which the encoder uses
  int incomePort = 0;  ///< of the income server; 0 when it is not known
  std::shared_ptr<EncoderTrials> trials = std::make_shared<EncoderTrials>();  ///< shared by all outputs
};

}  // namespace korvia
