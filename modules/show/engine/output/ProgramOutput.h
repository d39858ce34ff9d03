// Where program frames go: a recording, later streams. Made and fed on the engine thread, works on its own.
#pragma once
#include <QString>

#include "FrameRate.h"
#include "engine/frame/Frame.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

/// What an output is started with.
struct OutputRequest {
  int slot = OutputSlotRecord;
  tagKorviaShowOutputParam param;
  QString programName;
  /// Size of the encoded picture; its frame rate is not used, the show's is.
  tagKorviaFormatInfo format;
  FrameRate rate;
};

struct OutputFigures {
  bool up = false;  ///< data was accepted and nothing failed since
  qint64 framesEncoded = 0;
  qint64 framesDropped = 0;
  qint64 bytesWritten = 0;
  float videoKbps = 0;
  float framesPerSecond = 0;
};

class ProgramOutput {
 public:
  virtual ~ProgramOutput() = default;
  /// One program frame; `frameIndex` counts render frames from the start of this output and makes the time
  /// stamp. Never blocks: an output that cannot keep up drops its own frames. Engine thread.
  virtual void pushFrame(const FrameRef& frame, qint64 frameIndex) = 0;
  /// Ends the output: what was pushed is written and the file is finalised in the background. Engine thread.
  virtual void finish() = 0;
  /// Whether everything is written and closed after finish(), waiting for it at most this long. Destruction
  /// waits too, for a bounded time. Any thread; with 0 it only asks.
  virtual bool waitFinished(int timeoutMs) = 0;
  /// Any thread.
  virtual OutputFigures figures() const = 0;
};

}  // namespace korvia
