#include "RecordOutput.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "OutputLog.h"
#include "RecordWorker.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

// For what follows the end of the stream: closing the file and the thread's last steps.
constexpr int kCloseMs = 2000;

qint64 freeBytesAt(const QString& folder) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(folder.toStdString(), error);
  return error ? -1 : static_cast<qint64>(space.available);
}

}  // namespace

RecordOutput::RecordOutput(RecordSettings settings)
    : finishTimeoutMs_(settings.finishTimeoutMs),
      state_(std::make_shared<RecordState>(settings.queueCapacity)) {
  if (!settings.freeBytes)
    settings.freeBytes = freeBytesAt;
  thread_ = std::thread([settings = std::move(settings), state = state_]() mutable {
    nameThread("kv-record");
    runAsBatch();
    RecordWorker(std::move(settings), std::move(state)).run();
  });
}

RecordOutput::~RecordOutput() {
  finish();
  if (waitFinished(finishTimeoutMs_ + kCloseMs)) {
    thread_.join();
    return;
  }
  // A disk that never answers holds its thread for good; the rest of the engine goes on without it.
  qCWarning(logOutput, "a recording does not end, left behind");
  thread_.detach();
}

void RecordOutput::pushFrame(const FrameRef& frame, qint64 frameIndex) {
  if (!frame)
    return;
  {
    std::lock_guard lock(state_->mutex);
    if (!state_->accepting)
      return;
    if (!state_->queue.push(frame, frameIndex)) {
      ++state_->figures.framesDropped;
      return;
    }
  }
  // After the lock: who wakes up must not run into it.
  state_->changed.notify_all();
}

void RecordOutput::finish() {
  std::lock_guard lock(state_->mutex);
  state_->accepting = false;
  state_->finishing = true;
  state_->changed.notify_all();
}

bool RecordOutput::waitFinished(int timeoutMs) {
  std::unique_lock lock(state_->mutex);
  return state_->changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [this] { return state_->finished; });
}

OutputFigures RecordOutput::figures() const {
  std::lock_guard lock(state_->mutex);
  return state_->figures;
}

QString RecordOutput::fileName() const {
  std::lock_guard lock(state_->mutex);
  return state_->fileName;
}

}  // namespace korvia
