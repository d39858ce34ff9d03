// The state of one output: filled by the engine, shown by the console. A plain value.
#pragma once
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

/// Describes the newest start of its slot from the result of ShowEventStartOutput on: Failed then means that
/// this output failed, not the one before.
struct tagKorviaShowOutputReport {
  KorviaShowOutputState state = KorviaShowOutputState::Idle;
  /// The reason of a failure, for the operator, without addresses and keys; empty in other states.
  QString reason;
  /// Path of the file that is or was written; empty for a stream.
  QString fileName;
  /// Program frames that this output dropped because it could not keep up.
  qint64 droppedFrames = 0;

  friend bool operator==(const tagKorviaShowOutputReport&, const tagKorviaShowOutputReport&) = default;
};
