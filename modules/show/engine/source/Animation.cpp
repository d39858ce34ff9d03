#include "Animation.h"

#include <QImageReader>
#include <algorithm>

#include "PictureFile.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// Formats whose readers know the size of all pictures from the start.
constexpr const char* kFormats[] = {"gif", "webp"};

constexpr std::int64_t kMsNs = 1'000'000;
// Browsers show pictures that state this delay or a shorter one for the longer time, and the makers of
// animations count on it.
constexpr int kIgnoredDelayMs = 10;
constexpr int kUsualDelayMs = 100;

bool isAnimation(QImageReader& reader) {
  const QByteArray format = reader.format();
  return std::any_of(std::begin(kFormats), std::end(kFormats),
                     [&](const char* name) { return format == name; }) &&
         reader.imageCount() > 1;
}

/// How long the picture lasts that was read last.
std::int64_t delayNs(const QImageReader& reader) {
  const int delayMs = reader.nextImageDelay();
  return kMsNs * (delayMs <= kIgnoredDelayMs ? kUsualDelayMs : delayMs);
}

}  // namespace

Animation::Animation(FrameRate rate, FrameSize renderSize)
    : clock_(rate), queue_(clock_), opaquePool_(renderSize), alphaPool_(renderSize, FrameAlpha::Plane) {
  clock_.setPlaying(true);
}

// Console thread.

void Animation::rewind() {
  {
    // The thread that decodes sees the flag whenever the queue has refused its picture.
    MutexLock lock(mutex_);
    rewound_ = true;
    queue_.beginFlush(clock_.flush());
  }
  wake_.notify_one();
}

void Animation::close() {
  {
    MutexLock lock(mutex_);
    closing_ = true;
  }
  queue_.close();
  wake_.notify_one();
}

// Engine thread.

Animation::Pull Animation::pull(int ticks) {
  if (!animated_)
    return {};
  VideoQueue::Pull pulled = queue_.pull(clock_.advance(ticks));
  if (pulled.fresh) {
    arrivals_.count(pulled.taken);
    positionNs_ = pulled.mediaNs;
    ++framesShown_;
  }
  return {std::move(pulled.frame), pulled.drained};
}

// The source's thread.

void Animation::run(PictureFile& file) {
  QString reason;
  std::unique_ptr<QImageReader> reader = file.reader(reason);
  if (!reader || !isAnimation(*reader))
    return;
  animated_ = true;
  const int repeats = reader->loopCount();  // after the first pass; negative for ever
  for (int passes = 0;;) {
    // Counting the pictures has changed what the reader says about delays, so that each pass needs a new one.
    reader = file.reader(reason);
    QImage first;
    if (!reader || !reader->read(&first)) {
      qCWarning(logSource, "animation cannot be repeated : %s",
                qUtf8Printable(reader ? reader->errorString().toLower() : reason));
      markEnd();
      return;
    }
    bool goesOn = true;
    if (decodePass(*reader, std::move(first)) == Pass::Ended) {
      ++passes;
      if (picturesInPass_ < 2) {
        // The file is damaged after its first picture.
        animated_ = false;
        return;
      }
      if (repeats < 0 || passes <= repeats)
        continue;
      markEnd();
      goesOn = waitForRewind();
    } else {
      goesOn = resume();
    }
    if (!goesOn)
      return;
    passes = 0;
  }
}

Animation::Pass Animation::decodePass(QImageReader& reader, QImage image) {
  std::int64_t mediaNs = 0;
  picturesInPass_ = 0;
  do {
    const std::int64_t lastsNs = delayNs(reader);
    TimedFrame frame{frameOf(image), timeNs_, mediaNs, 0};
    if (!queue_.push(std::move(frame)))
      return Pass::Interrupted;
    ++framesDecoded_;
    ++picturesInPass_;
    timeNs_ += lastsNs;
    mediaNs += lastsNs;
  } while (reader.read(&image));
  durationNs_ = mediaNs;
  return Pass::Ended;
}

FrameRef Animation::frameOf(const QImage& image) {
  MutableFrame frame = (alphaOf(image) == FrameAlpha::Plane ? alphaPool_ : opaquePool_).acquire();
  if (!fitImage(image, *frame))
    frame->fillBlack();
  return std::move(frame).publish();
}

void Animation::markEnd() {
  MutexLock lock(mutex_);
  if (!rewound_)
    queue_.markEnd(timeNs_);
}

bool Animation::resume() {
  MutexLock lock(mutex_);
  rewound_ = false;
  timeNs_ = 0;
  queue_.endFlush();
  return !closing_;
}

bool Animation::waitForRewind() {
  {
    MutexLock lock(mutex_);
    wake_.wait(lock, [this]() REQUIRES(mutex_) { return rewound_ || closing_; });
  }
  return resume();
}

}  // namespace korvia
