// What an output slot is started with. A plain value.
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
  /// Size of the encoded picture; its frame rate is not used, the show's is.
  tagKorviaFormatInfo format;
  FrameRate rate;
};

}  // namespace korvia
