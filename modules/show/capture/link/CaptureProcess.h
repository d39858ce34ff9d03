// A run of the capture program: starts it, takes its pictures and sound, sends it what the operator does on a
// page, and tells when it ends. The program sees nothing of the console but what its request names. start(),
// the destructor and the send functions: the owner's thread. The listener is called on a thread of the
// process.
#pragma once
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <thread>
#include <vector>

#include "CaptureChannel.h"
#include "CaptureRequest.h"
#include "PictureRing.h"
#include "ThreadSafety.h"

namespace korvia {

/// Takes what the program shows. The calls come one after the other.
class CaptureListener {
 public:
  virtual ~CaptureListener() = default;
  /// The picture's memory is valid during the call and may be written by the program after it.
  virtual void onCapturePicture(const CapturePicture& picture) = 0;
  /// The picture before has not changed. It may be the first call.
  virtual void onCaptureRepeat(std::int64_t /*stampNs*/) {}
  /// `frames` pairs of samples, left and right, at 48 kHz, whose first one has the stamp. Valid during the
  /// call.
  virtual void onCaptureSound(const float* samples, int frames, std::int64_t stampNs) = 0;
  /// The program has ended, or is no longer trusted; the last call. `reason` has no addresses and titles in
  /// it.
  virtual void onCaptureEnded(const QString& reason) = 0;
};

class CaptureProcess {
 public:
  /// The listener outlives the process, or is taken from it by setListener().
  explicit CaptureProcess(CaptureListener& listener);
  CaptureProcess(const CaptureProcess&) = delete;
  CaptureProcess& operator=(const CaptureProcess&) = delete;
  /// Ends the program and its child processes. No call of the listener runs any more when it returns.
  ~CaptureProcess();

  /// Once. False with a reason when the program cannot be started.
  bool start(const CaptureRequest& request, QString& reason);
  /// Another listener, or nobody. No call of the former one runs any more when it returns. False when the
  /// program has ended, of which the new one is not told. Not from a call of a listener.
  bool setListener(CaptureListener* listener) EXCLUDES(listenerMutex_);
  /// 0 when it was not started.
  qint64 processId() const { return process_; }

  /// For a page. Positions and wheel steps are pixels of the page; buttons are 1 left, 2 middle, 3 right. A
  /// key is named as X names it: "a", "Return", "Left".
  enum class Press { Down, Up };
  void sendMouseMove(double x, double y);
  void sendMouseButton(double x, double y, int button, Press press);
  void sendWheel(double x, double y, double deltaX, double deltaY);
  void sendKey(const QString& name, Press press);
  /// Draws the page in this size, in pixels. The next picture comes as a whole, also when it has not changed.
  void resize(int width, int height);
  /// Shows another page. A local file is only shown from the folder of the file that the request names.
  void load(const QString& address);

 private:
  template <typename Call>
  void tell(Call call) EXCLUDES(listenerMutex_);
  void run();
  /// Waits for the program and for the end, and works until one of them has come. True for the end.
  bool workUntilEnd();
  bool handleMessages();
  bool handle(CapturePacket& packet);
  bool takePicture(const PictureMessage& message);
  bool takeSound(const CapturePacket& packet);
  void release(const ReleaseMessage& slot);
  void sendReleases();
  /// Whether the program uses so much memory that its own guard must have failed.
  bool isTooLarge() const;
  void logErrors();
  QString endProgram();

  Mutex listenerMutex_;  // held during the calls
  CaptureListener* listener_ GUARDED_BY(listenerMutex_);
  bool ended_ GUARDED_BY(listenerMutex_) = false;
  std::unique_ptr<QTemporaryDir> folder_;  // the program's home and current folder
  CaptureChannel channel_;
  FileDescriptor errors_;  // what the program writes to its standard error
  FileDescriptor stop_;    // an eventfd
  qint64 process_ = 0;
  qint64 mostMemoryBytes_ = 0;
  PictureRing ring_;       // the thread's
  QString failure_;        // the thread's
  qint64 errorLines_ = 0;  // the thread's
  // The thread's: slots that the program has not been told of, because it did not read.
  std::vector<ReleaseMessage> unsentReleases_;
  std::thread thread_;
};

}  // namespace korvia
