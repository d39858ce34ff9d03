// The list of the newest segments of a stream, as text for players, and what has to be deleted. Not
// thread-safe: guarded by its owner.
#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>

namespace korvia {

class HlsPlaylist {
 public:
  enum class Join { Continues, Breaks };

  /// `listed` segments of about `targetNs` stand in the list.
  HlsPlaylist(int listed, qint64 targetNs);

  /// Adds a finished segment. `Breaks` when its time stamps do not continue those of the segment before.
  void add(const QString& name, qint64 durationNs, Join join);
  /// No segment follows.
  void end() { ended_ = true; }
  bool isEmpty() const { return segments_.empty(); }
  /// Drops the segments up to the newest one that does not exist any more.
  void dropMissing(const std::function<bool(const QString& name)>& exists);
  QByteArray text() const;
  /// The segments that no player asks for any more, once. A segment stays for the length of the longest list
  /// that it stood in and its own length (RFC 8216, 6.2.2).
  QStringList takeOutdated();
  /// All segments that have left the list, once: when the room they take is needed.
  QStringList takeUnlisted();

 private:
  struct Segment {
    QString name;
    qint64 durationNs = 0;
    Join join = Join::Continues;
  };

  std::size_t listBegin() const;
  void dropFirst();

  const std::size_t listed_;
  qint64 longestNs_;
  std::deque<Segment> segments_;  // the list, and before it those that left it
  qint64 removed_ = 0;            // segments that were here before the first
  qint64 removedBreaks_ = 0;      // breaks before the first
  bool ended_ = false;
};

}  // namespace korvia
