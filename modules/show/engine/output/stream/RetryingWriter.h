// Keeps a network target alive: makes a writer, and makes the next one when it is refused, breaks off or
// takes no data for some time. What comes meanwhile is dropped. Each writer begins with a key frame at time
// 0. Thread of the target.
#pragma once
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <functional>
#include <memory>
#include <optional>

#include "engine/output/TargetWriter.h"

namespace korvia {

class ServerProbe;

struct RetrySettings {
  QString label;  ///< in the log, as the subject of a sentence
  /// The longest first wait. Each wait is drawn between 3/4 and all of its longest time, so that many
  /// programs do not return to a server in the same moment.
  int firstMs = 900;
  double growth = 1.5;
  int longestMs = 10'000;
  /// A connection that takes nothing for so long is given up.
  int stallMs = 5000;
  /// A connection that was up for so long begins again with the first wait when it is lost.
  int steadyMs = 3000;
  /// Notices that the server is back before the wait is over; may be null.
  std::shared_ptr<ServerProbe> probe;
};

class RetryingWriter : public TargetWriter {
 public:
  using MakeWriter = std::function<std::unique_ptr<TargetWriter>()>;

  RetryingWriter(RetrySettings settings, MakeWriter make);

  /// Opens the first writer. When that is refused, the settings can never work, and the target ends.
  bool open(Wake wake) override;
  QString location() const override { return {}; }
  bool hasRoom() const override { return !writer_ || writer_->hasRoom(); }
  void write(const Packet& packet) override;
  void end() override;
  Progress progress() const override;
  QString failure() const override { return reason_; }
  bool mayGoOn() override;
  qint64 bytesWritten() const override;
  bool needsEnd() const override { return false; }
  TargetLink link() const override;
  bool takeKeyRequest() override;
  void close(const TargetOutcome& outcome) override;

 private:
  bool makeWriter();
  /// Gives the writer up when it has failed or stalls.
  void watch();
  void lose(const QString& reason);
  bool isUp() const { return writer_ && writer_->bytesWritten() > 0; }

  const RetrySettings settings_;
  const MakeWriter make_;
  Wake wake_;
  std::unique_ptr<TargetWriter> writer_;  // null while it waits for the next try
  std::optional<qint64> originNs_;        // of the key frame at which the writer began
  QElapsedTimer sinceRoom_;               // since a packet could be written
  QElapsedTimer sinceUp_;                 // valid while the writer is up
  QDeadlineTimer retry_;
  int tries_ = 0;  // in a row without a steady connection
  // Null without one, and after it has misled until the next connection that is up: a server may refuse the
  // stream, or take one connection only, which was that of the probe.
  std::shared_ptr<ServerProbe> probe_;
  bool isTryOfProbe_ = false;
  bool lost_ = false;
  bool ending_ = false;
  bool keyWanted_ = false;
  QString reason_;        // of the last loss
  QString loggedReason_;  // so that a server that stays away is logged once
  qint64 lostBytes_ = 0;  // of the writers before
  qint64 framesPassed_ = 0;
};

}  // namespace korvia
