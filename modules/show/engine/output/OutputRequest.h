// What is needed to start one output, the stream or the recording. A plain value.
#pragma once
#include <QString>
#include <memory>

#include "EncoderTrials.h"
#include "FrameRate.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

/// How the stream is published to the own income server.
struct IncomeTarget {
  int port = 0;    ///< 0 when it is not known
  QString secret;  ///< which the server asks of the program; empty for a server that asks none
};

struct OutputRequest {
  int slot = OutputSlotRecord;
  tagKorviaShowOutputParam param;  ///< settings of all outputs; `slot` is the index of this one
  QString programName;             ///< for the name of a recording
  /// The size of the encoded picture, and whether there is sound, are taken from it.
  tagKorviaFormatInfo format;
  FrameRate rate;  ///< the show's, which the encoder uses
  IncomeTarget income;
  std::shared_ptr<EncoderTrials> trials = std::make_shared<EncoderTrials>();  ///< shared by all outputs
};

}  // namespace korvia
