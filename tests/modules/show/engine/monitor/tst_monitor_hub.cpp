// Which pictures reach the windows, and which are left out.
#include <QtTest>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "KorviaShowObjectID.h"
#include "engine/monitor/MonitorHub.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{16, 8};

/// What the hub did with its surfaces. Written on the monitor thread, read by the test.
class Screen {
 public:
  void note(const QString& what) {
    std::lock_guard lock(mutex_);
    log_ << what;
  }
  void flushed() {
    std::lock_guard lock(mutex_);
    ++flushes_;
    changed_.notify_all();
  }
  QStringList waitForFlush(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::seconds(10), [&] { return flushes_ >= count; });
    return std::exchange(log_, {});
  }
  void setLost(WId window) {
    std::lock_guard lock(mutex_);
    lost_ = window;
  }
  bool isLost(WId window) {
    std::lock_guard lock(mutex_);
    return lost_ == window;
  }
  void found(WId window) {
    std::lock_guard lock(mutex_);
    if (lost_ == window)
      lost_ = 0;
  }

  /// From now on the monitor thread hangs when it shows a picture in the window, until release().
  void holdAt(WId window) {
    std::lock_guard lock(mutex_);
    held_ = window;
    reached_ = false;
  }
  void pass(WId window) {
    std::unique_lock lock(mutex_);
    if (held_ != window)
      return;
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return held_ == 0; });
  }
  bool waitUntilHeld() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return reached_; });
  }
  void release() {
    std::lock_guard lock(mutex_);
    held_ = 0;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  QStringList log_;       // guarded by mutex_
  int flushes_ = 0;       // guarded by mutex_
  WId lost_ = 0;          // guarded by mutex_
  WId held_ = 0;          // guarded by mutex_
  bool reached_ = false;  // guarded by mutex_
};

class FakeSurface final : public MonitorSurface {
 public:
  FakeSurface(Screen& screen, WId window) : screen_(screen), window_(window) {}
  ~FakeSurface() override { screen_.note(QString("%1 gone").arg(window_)); }
  void resize(const tagKorviaWindowInfo& info) override {
    screen_.note(QString("%1 resized %2").arg(window_).arg(info.right));
    fresh_ = true;
  }
  void show(const Frame& picture, const MonitorGuides& guides) override {
    const QString what = guides.isShown ? "%1 shows %2 with guides" : "%1 shows %2";
    screen_.note(what.arg(window_).arg(picture.plane(Frame::Y)[0]));
    fresh_ = false;
    screen_.found(window_);
    screen_.pass(window_);
  }
  bool isLost() const override { return fresh_ || screen_.isLost(window_); }

 private:
  Screen& screen_;
  const WId window_;
  bool fresh_ = true;
};

class FakeFactory final : public MonitorSurfaceFactory {
 public:
  explicit FakeFactory(Screen& screen) : screen_(screen) {}
  std::unique_ptr<MonitorSurface> create(const tagKorviaWindowInfo& window) override {
    return std::make_unique<FakeSurface>(screen_, window.winId);
  }
  void flush() override { screen_.flushed(); }

 private:
  Screen& screen_;
};

tagKorviaWindowInfo window(WId id) {
  tagKorviaWindowInfo info;
  info.right = 99;
  info.winId = id;
  return info;
}

}  // namespace

class MonitorHubTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<Screen> screen_;
  StageClock stages_;
  std::unique_ptr<MonitorHub> hub_;
  int frames_ = 0;

  void commit(const FrameRef& pgm, const FrameRef& pvm = {}, const FrameRef& strip = {}) {
    hub_->show(MonitorHub::Pgm, pgm);
    hub_->show(MonitorHub::Pvm, pvm);
    hub_->show(MonitorHub::FirstMedia, strip);
    hub_->commit();
  }
  /// One frame's pictures; gives what was done with them.
  QStringList frame(const FrameRef& pgm, const FrameRef& pvm = {}, const FrameRef& strip = {}) {
    commit(pgm, pvm, strip);
    return screen_->waitForFlush(++frames_);
  }

 private slots:
  void init() {
    screen_ = std::make_unique<Screen>();
    frames_ = 0;
    hub_ = std::make_unique<MonitorHub>(stages_, [this] { return std::make_unique<FakeFactory>(*screen_); });
    tagKorviaShowWindowPackInfo windows;
    windows.pgm = window(1);
    windows.pvm = window(2);
    windows.media[0] = window(3);
    hub_->open(windows);
  }
  void cleanup() { hub_.reset(); }

  void picturesReachTheirWindows() {
    QCOMPARE(frame(flat(kSize, 10), flat(kSize, 20), flat(kSize, 30)),
             (QStringList{"1 shows 10", "2 shows 20", "3 shows 30"}));
    QVERIFY(hub_->isShown(MonitorHub::Pgm));
    QVERIFY(!hub_->isShown(MonitorHub::Karaoke));
  }

  void guidesAreShownAndTakenAwayOverAPictureThatStandsStill() {
    const FrameRef still = flat(kSize, 10);
    QCOMPARE(frame(still), QStringList{"1 shows 10"});
    MonitorGuides guides;
    guides.isShown = true;
    hub_->show(MonitorHub::Pgm, still, guides);
    hub_->commit();
    QCOMPARE(screen_->waitForFlush(++frames_), QStringList{"1 shows 10 with guides"});
    QCOMPARE(frame(still), QStringList{"1 shows 10"});
    QCOMPARE(frame(still), QStringList{});
  }

  void aPictureThatStandsStillIsShownOnce() {
    const FrameRef still = flat(kSize, 10);
    QCOMPARE(frame(still), QStringList{"1 shows 10"});
    QCOMPARE(frame(still), QStringList{});
    QCOMPARE(frame(flat(kSize, 11)), QStringList{"1 shows 11"});
    QCOMPARE(frame(still), QStringList{"1 shows 10"});
    QCOMPARE(frame(still), QStringList{});
  }

  void aStillPictureComesBackWhereItWasLost() {
    const FrameRef still = flat(kSize, 10);
    frame(still, still);
    screen_->setLost(2);
    QCOMPARE(frame(still, still), QStringList{"2 shows 10"});
    QCOMPARE(frame(still, still), QStringList{});
  }

  void aResizedWindowGetsItsPictureAgain() {
    const FrameRef still = flat(kSize, 10);
    frame(still);
    tagKorviaWindowInfo larger = window(1);
    larger.right = 199;
    hub_->resizeObject(PGMObject, larger);
    QCOMPARE(frame(still), (QStringList{"1 resized 199", "1 shows 10"}));
  }

  void anotherWindowGetsASurfaceOfItsOwn() {
    const FrameRef still = flat(kSize, 10);
    frame(still);
    hub_->resizeObject(PGMObject, window(7));
    QCOMPARE(frame(still), (QStringList{"1 gone", "7 shows 10"}));
  }

  void objectsWithoutAWindowAreIgnored() {
    const FrameRef still = flat(kSize, 10);
    frame(still);
    for (const int object : {0, 1, 0x18, 0x104, 0x1003, -1})
      hub_->resizeObject(object, window(9));
    hub_->resizeObject(PGMObject, {});
    QCOMPARE(frame(still), QStringList{});
  }

  void stripsOfALateFrameAreLeftOut() {
    screen_->holdAt(2);
    commit(flat(kSize, 10), flat(kSize, 20), flat(kSize, 30));
    QVERIFY(screen_->waitUntilHeld());
    commit(flat(kSize, 11), flat(kSize, 21), flat(kSize, 31));
    screen_->release();
    frames_ += 2;
    // Program and preview are shown in both frames.
    QCOMPARE(screen_->waitForFlush(frames_),
             (QStringList{"1 shows 10", "2 shows 20", "1 shows 11", "2 shows 21", "3 shows 31"}));
    QCOMPARE(hub_->droppedPictures(), qint64(1));
  }

  void picturesThatWereNotFetchedAreReplaced() {
    screen_->holdAt(1);
    commit(flat(kSize, 10), flat(kSize, 20), flat(kSize, 30));
    QVERIFY(screen_->waitUntilHeld());
    commit(flat(kSize, 11), flat(kSize, 21), flat(kSize, 31));
    commit(flat(kSize, 12), flat(kSize, 22), flat(kSize, 32));
    screen_->release();
    frames_ += 2;
    QCOMPARE(screen_->waitForFlush(frames_),
             (QStringList{"1 shows 10", "2 shows 20", "1 shows 12", "2 shows 22", "3 shows 32"}));
    // Two of strips; those of program and preview do not count.
    QCOMPARE(hub_->droppedPictures(), qint64(2));
  }

  void picturesLeaveTheirTimesInTheStageClock() {
    frame(flat(kSize, 10));
    hub_->close();
    tagKorviaShowEngineFigures figures;
    stages_.read(figures);
    QVERIFY(figures.monitors.maxOfRunMs > 0);
  }

  void aClosedHubShowsNothing() {
    frame(flat(kSize, 10));
    hub_->close();
    hub_->show(MonitorHub::Pgm, flat(kSize, 11));
    hub_->commit();
    QCOMPARE(screen_->waitForFlush(frames_), (QStringList{"1 gone", "2 gone", "3 gone"}));
  }
};

QTEST_GUILESS_MAIN(MonitorHubTest)
#include "tst_monitor_hub.moc"
