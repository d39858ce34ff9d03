#include "SegmentFolder.h"

#include <QDateTime>
#include <QDir>
#include <cstdio>
#include <utility>

namespace korvia {

namespace {

constexpr char kUnfinished[] = ".tmp";

/// Replaces a file of the new name in one step.
bool renameOver(const QString& from, const QString& to) {
  return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

}  // namespace

SegmentFolder::SegmentFolder(const QString& folder, int listed, qint64 targetNs)
    : folder_(QDir::cleanPath(folder)),
      startSeconds_(QDateTime::currentSecsSinceEpoch()),
      list_(listed, targetNs) {}

bool SegmentFolder::prepare() {
  if (!QDir().mkpath(folder_))
    return false;
  if (isPrepared_) {
    list_.dropMissing([this](const QString& name) { return QFile::exists(in(name)); });
    return true;
  }
  isPrepared_ = true;
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
  name_ = QStringLiteral("segment-%1-%2.ts").arg(startSeconds_).arg(number_++, 6, 10, QLatin1Char('0'));
  beginNs_ = ptsNs;
  file_ = std::make_unique<QFile>(in(name_) + QLatin1String(kUnfinished));
  if (file_->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    return true;
  file_.reset();
  return false;
}

bool SegmentFolder::write(const QByteArray& data) {
  return !file_ || file_->write(data) == data.size();
}

bool SegmentFolder::endSegment(qint64 endNs) {
  if (!file_)
    return true;
  file_->close();
  const QString unfinished = std::exchange(file_, nullptr)->fileName();
  if (endNs <= beginNs_)
    return QFile::remove(unfinished);
  if (!renameOver(unfinished, in(name_)))
    return false;
  const bool breaks = std::exchange(isAfterBreak_, false);
  list_.add(name_, endNs - beginNs_, breaks ? HlsPlaylist::Join::Breaks : HlsPlaylist::Join::Continues);
  if (!publishList())
    return false;
  for (const QString& name : list_.takeOutdated())
    QFile::remove(in(name));
  return true;
}

bool SegmentFolder::publishList() {
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
  list_.end();
  return list_.isEmpty() || publishList();
}

}  // namespace korvia
