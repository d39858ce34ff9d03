// Logs how the console's start proceeds. GUI thread only.
#pragma once
#include "IProgressSink.h"

namespace korvia {

class ProgressLog final : public IProgressSink {
 public:
  void onProgressBegin() override;
  void onProgressEnd() override;
  void onProgressText(const QString& text) override;
};

}  // namespace korvia
