// Runs the capture program as the console does, and keeps what it shows. Test thread.
#pragma once
#include <QDir>
#include <QFile>
#include <QImage>
#include <QtTest>
#include <atomic>
#include <csignal>
#include <vector>

#include "CaptureProcess.h"
#include "ThreadSafety.h"

namespace korvia::test {

/// Long enough for a machine that does other work.
inline constexpr int kWaitMs = 20000;

class CaptureRig final : public CaptureListener {
 public:
  explicit CaptureRig(const CaptureRequest& request) : process_(std::make_unique<CaptureProcess>(*this)) {
    QString reason;
    if (!process_->start(request, reason))
      qWarning("%s", qUtf8Printable(reason));
  }
  ~CaptureRig() override { process_.reset(); }

  CaptureProcess& process() { return *process_; }
  pid_t processId() const { return static_cast<pid_t>(process_->processId()); }
  int pictures() const { return pictures_; }
  /// Times at which the picture had not changed.
  int repeats() const { return repeats_; }
  /// Samples of each side.
  int samples() const { return samples_; }
  float peak() const { return peak_; }
  QImage picture() const {
    const MutexLock lock(mutex_);
    return picture_;
  }
  std::vector<std::int64_t> stamps() const {
    const MutexLock lock(mutex_);
    return stamps_;
  }
  /// Positions of a green box in the row of the picture that was named.
  std::vector<int> boxes() const {
    const MutexLock lock(mutex_);
    return boxes_;
  }
  void watchBoxIn(int row) { boxRow_ = row; }
  /// Empty while the program runs.
  QString end() const {
    const MutexLock lock(mutex_);
    return end_;
  }

  /// New or repeated ones.
  bool waitForPictures(int count) const {
    const int wanted = pictures() + repeats() + count;
    return QTest::qWaitFor([this, wanted] { return pictures() + repeats() >= wanted; }, kWaitMs);
  }
  /// Blue, green, red, alpha are at this place as given, with a tolerance of 2; waited for.
  bool waitForPixel(const QPoint& place, QRgb color) const {
    return QTest::qWaitFor([&] { return isAt(place, color); }, kWaitMs);
  }
  bool waitForSize(const QSize& size) const {
    return QTest::qWaitFor([&] { return picture().size() == size; }, kWaitMs);
  }
  QString waitForEnd() const {
    const bool ended = QTest::qWaitFor([this] { return !end().isEmpty(); }, kWaitMs);
    return ended ? end() : QStringLiteral("still running");
  }

 private:
  bool isAt(const QPoint& place, QRgb color) const {
    const QImage image = picture();
    if (!image.rect().contains(place))
      return false;
    QRgb found = 0;
    std::memcpy(&found, image.constScanLine(place.y()) + place.x() * 4, sizeof found);
    const auto isNear = [](int a, int b) { return std::abs(a - b) <= 2; };
    return isNear(qRed(found), qRed(color)) && isNear(qGreen(found), qGreen(color)) &&
           isNear(qBlue(found), qBlue(color)) &&
           (image.format() == QImage::Format_RGB32 || isNear(qAlpha(found), qAlpha(color)));
  }

  void onCapturePicture(const CapturePicture& picture) override {
    const QImage image(
        picture.data, picture.width, picture.height, picture.stride,
        picture.layout == CaptureLayout::Opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    const MutexLock lock(mutex_);
    picture_ = image.copy();
    stamps_.push_back(picture.stampNs);
    if (boxRow_ >= 0)
      boxes_.push_back(boxIn(boxRow_));
    ++pictures_;
  }
  int boxIn(int row) const REQUIRES(mutex_) {
    for (int x = 0; x < picture_.width(); ++x) {
      if (picture_.pixel(x, row) == qRgb(0, 255, 0))
        return x;
    }
    return -1;
  }
  void onCaptureRepeat(std::int64_t stampNs) override {
    const MutexLock lock(mutex_);
    stamps_.push_back(stampNs);
    ++repeats_;
  }
  void onCaptureSound(const float* samples, int frames, std::int64_t) override {
    for (int i = 0; i < frames * 2; ++i)
      peak_ = std::max(peak_.load(), samples[i]);
    samples_ += frames;
  }
  void onCaptureEnded(const QString& reason) override {
    const MutexLock lock(mutex_);
    end_ = reason;
  }

  mutable Mutex mutex_;
  QImage picture_ GUARDED_BY(mutex_);
  std::vector<std::int64_t> stamps_ GUARDED_BY(mutex_);
  std::vector<int> boxes_ GUARDED_BY(mutex_);
  QString end_ GUARDED_BY(mutex_);
  std::atomic<int> boxRow_{-1};
  std::atomic<int> pictures_{0};
  std::atomic<int> repeats_{0};
  std::atomic<int> samples_{0};
  std::atomic<float> peak_{0};
  std::unique_ptr<CaptureProcess> process_;
};

/// The processes of the session that the program leads, which have not ended.
inline QStringList sessionOf(pid_t leader) {
  QStringList found;
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
    if (!entry.at(0).isDigit() || !file.open(QIODevice::ReadOnly))
      continue;
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.value(3).toInt() == leader && fields.value(0) != "Z" && fields.value(0) != "X")
      found << entry;
  }
  return found;
}

}  // namespace korvia::test
