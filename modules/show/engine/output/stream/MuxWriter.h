// Writes packets through a muxer into a sink element that sends them. Thread of the target.
#pragma once
#include <QByteArrayList>
#include <functional>
#include <memory>

#include "engine/output/MuxPipeline.h"
#include "engine/output/TargetWriter.h"

namespace korvia {

/// A stream: how it is muxed and where it goes.
struct MuxPlan {
  RecordContainer container{};
  MuxSink sink;
  QByteArrayList texts;  ///< that properties of the sink point into
  QString problem;       ///< why it cannot start with these settings, ever; empty when it can
  QString obstacle;      ///< why it cannot start now, which may change; empty when it can
  /// Called once a second while it runs: why it cannot go on, or nothing. For sinks that do not tell it
  /// themselves; may be empty.
  std::function<QString()> check = nullptr;

  static const RecordContainer& flv();
  /// MPEG-TS in blocks that fit into datagrams.
  static const RecordContainer& ts();
  /// MPEG-TS in blocks of a picture or a piece of sound each.
  static const RecordContainer& tsFrames();

  /// Sets a property of the sink to a text that the plan keeps.
  void setText(const char* property, const QByteArray& text);
};

class MuxWriter : public TargetWriter {
 public:
  explicit MuxWriter(MuxPlan plan) : plan_(std::move(plan)) {}

  bool open(Wake wake) override;
  QString location() const override { return {}; }
  bool hasRoom() const override { return !mux_ || mux_->hasRoom(); }
  void write(const Packet& packet) override;
  void end() override { mux_->endStream(); }
  Progress progress() const override;
  QString failure() const override;
  bool mayGoOn() override;
  qint64 bytesWritten() const override { return mux_ ? mux_->bytesTaken() : bytesTaken_; }
  void close(const TargetOutcome& outcome) override;

 private:
  const MuxPlan plan_;
  Wake wake_;
  QString trouble_;  // that the check of the plan has found
  std::unique_ptr<MuxPipeline> mux_;
  qint64 bytesTaken_ = 0;
};

}  // namespace korvia
