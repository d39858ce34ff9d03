#include "SegmentFolder.h"

#include <QDateTime>
#include <QDir>
#include <QHash>
#include <cstdio>
#include <utility>

#include "ThreadSafety.h"

namespace korvia {

namespace {

constexpr char kUnfinished[] = ".tmp";

/// Replaces a file of the new name in one step.
bool renameOver(const QString& from, const QString& to) {
  return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/// Which stream writes into a folder: the newest one. An earlier stream may still end in the background.
struct Owners {
  Mutex mutex;
  QHash<QString, const SegmentFolder*> byFolder GUARDED_BY(mutex);
};

Owners& owners() {
  static Owners all;
  return all;
}

}  // namespace

SegmentFolder::SegmentFolder(const QString& folder, int listed, qint64 targetNs)
    : folder_(QDir::cleanPath(folder)),
      startMs_(QDateTime::currentMSecsSinceEpoch()),
      list_(listed, targetNs) {}

SegmentFolder::~SegmentFolder() {
  if (!isFinished_)
    finish();
  Owners& all = owners();
  MutexLock lock(all.mutex);
  if (all.byFolder.value(folder_) == this)
    all.byFolder.remove(folder_);
}

bool SegmentFolder::isOwner() const {
  Owners& all = owners();
  MutexLock lock(all.mutex);
  return all.byFolder.value(folder_) == this;
}

bool SegmentFolder::prepare() {
  if (!QDir().mkpath(folder_))
    return false;
  if (isPrepared_) {
    list_.dropMissing([this](const QString& name) { return QFile::exists(in(name)); });
    removeFiles(list_.takeUnlisted());
    return true;
  }
  isPrepared_ = true;
  {
    Owners& all = owners();
    MutexLock lock(all.mutex);
    all.byFolder[folder_] = this;
  }
  QDir folder(folder_);
  const QStringList left =
      folder.entryList({QStringLiteral("segment-*-*.ts"), QStringLiteral("segment-*-*.ts.tmp"),
                        QLatin1String(kListName), QStringLiteral("index.m3u8.tmp")},
                       QDir::Files);
  for (const QString& name : left)
    folder.remove(name);
  return true;
}

bool SegmentFolder::begin(qint64 ptsNs) {
  if (!endSegment(ptsNs))
    return false;
  name_ = QStringLiteral("segment-%1-%2.ts").arg(startMs_).arg(number_++, 6, 10, QLatin1Char('0'));
  beginNs_ = ptsNs;
  file_ = std::make_unique<QFile>(in(name_) + QLatin1String(kUnfinished));
  if (file_->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    return true;
  file_.reset();
  return false;
}

bool SegmentFolder::write(const QByteArray& data) {
  if (file_ && file_->write(data) != data.size())
    isBroken_ = true;
  return !isBroken_;
}

void SegmentFolder::removeFiles(const QStringList& names) const {
  for (const QString& name : names)
    QFile::remove(in(name));
}

bool SegmentFolder::endSegment(qint64 endNs) {
  if (!file_)
    return true;
  file_->close();
  const QString unfinished = std::exchange(file_, nullptr)->fileName();
  if (std::exchange(isBroken_, false) || endNs <= beginNs_ || !isOwner()) {
    isAfterBreak_ = !list_.isEmpty();
    return QFile::remove(unfinished);
  }
  if (!renameOver(unfinished, in(name_)))
    return false;
  const bool breaks = std::exchange(isAfterBreak_, false);
  list_.add(name_, endNs - beginNs_, breaks ? HlsPlaylist::Join::Breaks : HlsPlaylist::Join::Continues);
  if (!publishList())
    return false;
  removeFiles(list_.takeOutdated());
  return true;
}

bool SegmentFolder::publishList() {
  if (!isOwner())
    return true;
  const QString list = in(QLatin1String(kListName));
  QFile file(list + QLatin1String(kUnfinished));
  const QByteArray text = list_.text();
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(text) != text.size())
    return false;
  file.close();
  return renameOver(file.fileName(), list);
}

bool SegmentFolder::interrupt(qint64 endNs) {
  const bool ended = endSegment(endNs);
  isAfterBreak_ = !list_.isEmpty();
  return ended;
}

bool SegmentFolder::finish() {
  isFinished_ = true;
  list_.end();
  return list_.isEmpty() || publishList();
}

}  // namespace korvia
