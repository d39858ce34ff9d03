// One file of a recording: its name, its muxer, its end. Made, used and destroyed on the thread of the
// target.
#pragma once
#include <QString>
#include <memory>

#include "MuxPipeline.h"
#include "Packet.h"
#include "RecordContainer.h"

namespace korvia {

class RecordingPart {
 public:
  /// For the file that was reserved for it. `wake` is that of MuxPipeline.
  RecordingPart(QString fileName, RecordContainer container, std::function<void()> wake);
  /// Waits for what is being written. An empty file is removed.
  ~RecordingPart();
  RecordingPart(const RecordingPart&) = delete;
  RecordingPart& operator=(const RecordingPart&) = delete;

  /// Begins with this key frame, whose time becomes 0. On failure false, with the reason in failure().
  bool begin(const Packet& first);
  bool hasBegun() const { return mux_ != nullptr; }
  /// Whether a packet can be written without waiting long in a queue. Takes no lock.
  bool hasRoom() const { return !mux_ || mux_->hasRoom(); }
  /// Never blocks.
  void write(const Packet& packet);
  /// No more packets: the file is finalised in the background.
  void end();

  /// After end(), when all is written; at once for a part that has not begun.
  bool isEnded() const { return ending_ && (!mux_ || mux_->isEnded()); }
  bool hasFailed() const { return mux_ && mux_->hasFailed(); }
  QString failure() const { return mux_ ? mux_->failure() : QString(); }
  /// Whether it has failed for want of space.
  bool isOutOfSpace() const {
    return hasFailed() && mux_->resourceError() == GST_RESOURCE_ERROR_NO_SPACE_LEFT;
  }

  /// Of the encoder whose headers the file has.
  int generation() const { return generation_; }
  const QString& fileName() const { return fileName_; }
  qint64 bytesWritten() const { return mux_ ? mux_->bytesWritten() : 0; }
  /// Time from the first picture to the end of the last one that was handed over.
  qint64 lengthNs() const { return endNs_ - startNs_; }

 private:
  const QString fileName_;
  const RecordContainer container_;
  const std::function<void()> wake_;
  std::unique_ptr<MuxPipeline> mux_;
  qint64 startNs_ = 0;
  qint64 endNs_ = 0;
  qint64 frames_ = 0;
  int generation_ = 0;
  bool ending_ = false;
};

}  // namespace korvia
