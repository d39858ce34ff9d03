#include "HlsPlaylist.h"

#include <algorithm>
#include <iterator>

namespace korvia {

namespace {

constexpr double kNsPerSecond = 1e9;

}  // namespace

HlsPlaylist::HlsPlaylist(int listed, qint64 targetNs)
    : listed_(static_cast<std::size_t>(std::max(1, listed))), longestNs_(targetNs) {}

void HlsPlaylist::add(const QString& name, qint64 durationNs, Join join) {
  segments_.push_back({name, durationNs, join});
  longestNs_ = std::max(longestNs_, durationNs);
}

std::size_t HlsPlaylist::listBegin() const {
  return segments_.size() - std::min(listed_, segments_.size());
}

QByteArray HlsPlaylist::text() const {
  const std::size_t begin = listBegin();
  const auto breaks = std::count_if(segments_.begin(), segments_.begin() + static_cast<std::ptrdiff_t>(begin),
                                    [](const Segment& segment) { return segment.join == Join::Breaks; });
  // Players compare with the rounded length of each segment.
  const qint64 target = (longestNs_ + 499'999'999) / 1'000'000'000;
  QByteArray text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:" + QByteArray::number(target) +
                    "\n#EXT-X-MEDIA-SEQUENCE:" + QByteArray::number(removed_ + static_cast<qint64>(begin)) +
                    "\n#EXT-X-DISCONTINUITY-SEQUENCE:" + QByteArray::number(removedBreaks_ + breaks) + '\n';
  for (std::size_t i = begin; i < segments_.size(); ++i) {
    const Segment& segment = segments_[i];
    if (segment.join == Join::Breaks)
      text += "#EXT-X-DISCONTINUITY\n";
    text += "#EXTINF:" + QByteArray::number(static_cast<double>(segment.durationNs) / kNsPerSecond, 'f', 3) +
            ",\n" + segment.name.toUtf8() + '\n';
  }
  if (ended_)
    text += "#EXT-X-ENDLIST\n";
  return text;
}

void HlsPlaylist::dropFirst() {
  ++removed_;
  removedBreaks_ += segments_.front().join == Join::Breaks ? 1 : 0;
  segments_.pop_front();
}

void HlsPlaylist::dropMissing(const std::function<bool(const QString& name)>& exists) {
  const auto missing = std::find_if(segments_.rbegin(), segments_.rend(),
                                    [&exists](const Segment& segment) { return !exists(segment.name); });
  for (auto count = std::distance(missing, segments_.rend()); count > 0; --count)
    dropFirst();
}

QStringList HlsPlaylist::takeOutdated() {
  QStringList outdated;
  while (segments_.size() > 2 * listed_ + 1) {
    outdated.append(segments_.front().name);
    dropFirst();
  }
  return outdated;
}

QStringList HlsPlaylist::takeUnlisted() {
  QStringList unlisted;
  for (std::size_t count = listBegin(); count > 0; --count) {
    unlisted.append(segments_.front().name);
    dropFirst();
  }
  return unlisted;
}

}  // namespace korvia
