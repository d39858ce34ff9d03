// The parameters with which an output slot is started. A plain value.
#pragma once
#include <QString>

#include "FrameRate.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

struct OutputRequest {
  int slot = OutputSlotRecord;
  tagKorviaShowOutputParam param;
  QString programName;
  /// Size of the encoded picture. Its frame rate is ignored in favour of the show's.
  tagKorviaFormatInfo format;
  FrameRate rate;
};

}  // namespace korvia
