// A recording: program frames into a file through x264. Nothing here waits for an encoder or a disk except
// waitFinished() and the destructor. Engine thread, but for figures(), fileName() and waitFinished().
#pragma once
#include <memory>
#include <thread>

#include "ProgramOutput.h"
#include "RecordSettings.h"

namespace korvia {

struct RecordState;

class RecordOutput : public ProgramOutput {
 public:
  /// Starts at once. The file appears when the output's own thread has made it; a failure to do so is logged,
  /// and the output stays down.
  explicit RecordOutput(RecordSettings settings);
  /// Ends the recording and waits for the file, a little longer than the settings' time-out at most.
  ~RecordOutput() override;

  void pushFrame(const FrameRef& frame, qint64 frameIndex) override;
  void finish() override;
  bool waitFinished(int timeoutMs) override;
  OutputFigures figures() const override;
  /// Path of the file on this machine; empty while there is none.
  QString fileName() const;

 private:
  const int finishTimeoutMs_;
  const std::shared_ptr<RecordState> state_;
  std::thread thread_;
};

}  // namespace korvia
