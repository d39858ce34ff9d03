// The state of one output and of its targets: filled by the engine, shown by the console. Plain values.
#pragma once
#include <QList>
#include <QString>

enum class KorviaShowOutputState : qint32 {
  /// Nothing was started since the engine opened.
  Idle,
  /// Started, and nothing was written or sent yet.
  Starting,
  Running,
  /// Could not start, or ended with an error; nothing is written or sent until the next start.
  Failed,
  /// Stopped, and everything was written completely.
  Finished,
};

enum class KorviaShowTargetState : qint32 {
  /// Nothing was accepted yet.
  Connecting,
  /// What is sent or written is accepted.
  Up,
  /// Was refused or broke off, and is tried again.
  Lost,
  /// Not tried again before the next start.
  Failed,
  /// Ended in order.
  Finished,
};

/// One target of an output: a file, a push, a server.
struct tagKorviaShowTargetReport {
  /// As on the pages of the output settings: "RTMP Push - 0", "HTTP", "Record".
  QString name;
  KorviaShowTargetState state = KorviaShowTargetState::Connecting;
  /// Why it is lost or failed, for the operator, without addresses and keys; empty in other states.
  QString reason;
  /// Since it came up; 0 unless it is up.
  qint32 upSeconds = 0;
  /// Until the next try; 0 unless it is lost.
  qint32 retrySeconds = 0;
  /// kbit/s, of the last second.
  float bitrate = 0;

  friend bool operator==(const tagKorviaShowTargetReport&, const tagKorviaShowTargetReport&) = default;
};

/// Describes the newest start of its slot from the result of ShowEventStartOutput on: Failed then means that
/// this output failed, not the one before.
struct tagKorviaShowOutputReport {
  KorviaShowOutputState state = KorviaShowOutputState::Idle;
  /// The reason of a failure, for the operator, without addresses and keys; empty in other states.
  QString reason;
  /// Path of the file that is or was written, of the newest when there are several; empty for a stream.
  QString fileName;
  /// Program frames that this output dropped because it could not keep up, or left out while its disk was
  /// full.
  qint64 droppedFrames = 0;
  /// Of what was written since the start, over all files.
  qint64 writtenMs = 0;
  qint64 writtenBytes = 0;
  /// For how long the disk has room at the bitrate of the settings; -1 for a stream or when it is unknown.
  qint64 roomSeconds = -1;
  /// How far the recording was read from the disk again and found whole; -1 before the first time.
  qint64 verifiedMs = -1;
  /// Why what was written could not be read from the disk again; empty when it could.
  QString warning;
  QList<tagKorviaShowTargetReport> targets;

  friend bool operator==(const tagKorviaShowOutputReport&, const tagKorviaShowOutputReport&) = default;
};
