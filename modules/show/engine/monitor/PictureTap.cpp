#include "PictureTap.h"

#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

constexpr FrameSize kProgramSize{640, 360};
constexpr FrameSize kCellSize{240, 135};
constexpr int kCellsInRow = 4;

}  // namespace

PictureTap::~PictureTap() {
  stop();
}

void PictureTap::setSink(IKorviaShowPictureSink* sink) {
  stop();
  if (!sink)
    return;
  {
    const MutexLock lock(mutex_);
    sink_ = sink;
    stop_ = false;
  }
  thread_ = std::thread([this] { run(); });
}

void PictureTap::stop() {
  {
    const MutexLock lock(mutex_);
    sink_ = nullptr;
    stop_ = true;
    program_.reset();
    channels_.reset();
  }
  wake_.notify_all();
  if (thread_.joinable())
    thread_.join();
}

bool PictureTap::isDue(KorviaShowPicture which, Clock::time_point now) {
  Clock::time_point& due = due_[static_cast<std::size_t>(which)];
  if (now < due)
    return false;
  const MutexLock lock(mutex_);
  if (!sink_ || busy_ || !sink_->isWanted(which))
    return false;
  // Counted from when it was due, so that the pace does not suffer from frames that come a little later.
  const auto pause = which == KorviaShowPicture::Program ? kProgramPause : kChannelsPause;
  due = (now - due < pause ? due : now) + pause;
  return true;
}

void PictureTap::showProgram(const FrameRef& program) {
  {
    const MutexLock lock(mutex_);
    program_ = program;
  }
  wake_.notify_all();
}

void PictureTap::showChannels(const Channels& channels) {
  {
    const MutexLock lock(mutex_);
    channels_ = channels;
  }
  wake_.notify_all();
}

void PictureTap::run() {
  nameThread("kv-pictures");
  runBehind();
  MutexLock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this]() REQUIRES(mutex_) { return stop_ || program_ || channels_; });
    if (stop_)
      return;
    // stop() waits for this thread, so that the sink lives while it is called without the lock.
    IKorviaShowPictureSink* sink = sink_;
    const FrameRef program = std::move(program_);
    const std::optional<Channels> channels = std::move(channels_);
    program_.reset();
    channels_.reset();
    busy_ = true;
    lock.unlock();
    if (program)
      sink->onPicture(KorviaShowPicture::Program, scaledProgram(*program));
    if (channels)
      sink->onPicture(KorviaShowPicture::Channels, channelSheet(*channels));
    lock.lock();
    busy_ = false;
  }
}

QImage PictureTap::scaledProgram(const Frame& program) {
  const FrameSize size = monitorRect(program.size(), kProgramSize).size;
  QImage image(size.width, size.height, QImage::Format_RGB32);
  programScaler_.toRgb(program, size, image.bits(), image.bytesPerLine());
  return image;
}

QImage PictureTap::channelSheet(const Channels& channels) {
  constexpr int kRows = static_cast<int>(std::tuple_size_v<Channels>) / kCellsInRow;
  QImage sheet(kCellSize.width * kCellsInRow, kCellSize.height * kRows, QImage::Format_RGB32);
  sheet.fill(Qt::black);
  for (std::size_t cell = 0; cell < channels.size(); ++cell) {
    if (!channels[cell])
      continue;
    const MonitorRect rect = monitorRect(channels[cell]->size(), kCellSize);
    const int x = static_cast<int>(cell) % kCellsInRow * kCellSize.width + rect.x;
    const int y = static_cast<int>(cell) / kCellsInRow * kCellSize.height + rect.y;
    cellScalers_[cell].toRgb(*channels[cell], rect.size, sheet.scanLine(y) + x * 4, sheet.bytesPerLine());
  }
  return sheet;
}

}  // namespace korvia
