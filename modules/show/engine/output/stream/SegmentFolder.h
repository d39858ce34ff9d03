// Writes the segments of a stream and their list into a folder. Readers see whole files alone, and a list
// names only files that exist. One thread at a time; a later stream may take the folder over meanwhile.
#pragma once
#include <QFile>
#include <memory>

#include "HlsPlaylist.h"

namespace korvia {

class SegmentFolder {
 public:
  /// The list in the folder.
  static constexpr char kListName[] = "index.m3u8";

  SegmentFolder(const QString& folder, int listed, qint64 targetNs);
  /// Marks the list as finished, unless finish() has done it.
  ~SegmentFolder();
  SegmentFolder(const SegmentFolder&) = delete;
  SegmentFolder& operator=(const SegmentFolder&) = delete;

  /// Makes the folder, and the first time takes it over and removes what an earlier stream left in it. Later,
  /// after a failure, it looks which segments are still there and removes those that are not listed any more,
  /// since the disk may be full. False when the folder cannot be made.
  bool prepare();

  // All of these are false when the disk does not take what is written.
  /// Ends the segment before, and begins one with this time stamp.
  bool begin(qint64 ptsNs);
  bool write(const QByteArray& data);
  /// Ends the stream for now; a next begin() is marked as a break of the time stamps.
  bool interrupt(qint64 endNs);
  /// Marks the list as finished.
  bool finish();

 private:
  bool endSegment(qint64 endNs);
  bool publishList();
  void removeFiles(const QStringList& names) const;
  /// Whether no later stream has taken the folder over.
  bool isOwner() const;
  QString in(const QString& name) const { return folder_ + QLatin1Char('/') + name; }

  const QString folder_;
  const qint64 startMs_;  // in the names, so that those of a later stream differ
  HlsPlaylist list_;
  std::unique_ptr<QFile> file_;  // the segment that is written
  QString name_;                 // of that segment
  qint64 beginNs_ = 0;
  qint64 number_ = 0;
  bool isBroken_ = false;  // a part of the segment was not written
  bool isAfterBreak_ = false;
  bool isFinished_ = false;
  bool isPrepared_ = false;
};

}  // namespace korvia
