// Decides who may publish to the income server. nginx asks it by HTTP on a Unix socket of the working folder
// and refuses a publisher that gets no answer. start() and stop() are called on the supervisor's thread; each
// question is answered on a thread of its own, because a verdict may take a second.
#pragma once
#include <QByteArray>
#include <QElapsedTimer>
#include <QSet>
#include <QString>
#include <atomic>
#include <optional>

#include "NginxControl.h"
#include "PublishRequest.h"
#include "ThreadSafety.h"

struct MHD_Connection;
struct MHD_Daemon;

namespace korvia {

class PublishGate {
 public:
  struct Secrets {
    QByteArray liveSecret;  ///< which the console brings when it publishes
    QByteArray publishKey;  ///< which others bring when they publish; empty when they need none
  };

  PublishGate(const QString& workFolder, const Secrets& secrets);
  ~PublishGate();
  PublishGate(const PublishGate&) = delete;
  PublishGate& operator=(const PublishGate&) = delete;

  /// False, with a line in the log, when the socket cannot be had.
  bool start();
  /// Answers what is being asked with a refusal, and waits for that.
  void stop();

  /// How many publishers were refused so far. Any thread.
  int refused() const { return refused_; }

  /// Judges the form that nginx posted. Threads of the server.
  bool allows(const QByteArray& form);

 private:
  QString refusal(const PublishRequest& request);
  QString refusalByRules(const PublishRequest& request) const;
  QString refusalByPublisher(const PublishRequest& request);
  std::optional<RtmpPublisher> publisherOf(const PublishRequest& request) const;
  bool replace(const RtmpPublisher& ghost, const PublishRequest& request);
  bool pause();
  /// A text of a client as it may stand in the log.
  QByteArray loggable(const QString& text) const;
  void logRefusal(const PublishRequest& request, const QString& reason);

  const QString workFolder_;
  const Secrets secrets_;
  const NginxControl control_;
  MHD_Daemon* daemon_ = nullptr;
  std::atomic<int> refused_{0};
  Mutex mutex_;
  ConditionVariable wake_;
  bool isStopping_ GUARDED_BY(mutex_) = false;
  QSet<QString> judged_ GUARDED_BY(mutex_);  // streams whose publisher is judged now
  QElapsedTimer sinceLogged_ GUARDED_BY(mutex_);
  int loggedInARow_ GUARDED_BY(mutex_) = 0;
  int unlogged_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia
