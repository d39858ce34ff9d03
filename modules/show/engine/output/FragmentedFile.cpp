#include "FragmentedFile.h"

#include <QtAlgorithms>
#include <QtEndian>
#include <algorithm>
#include <cstring>
#include <iterator>

namespace korvia {

namespace {

constexpr int kHeadBytes = 8;
constexpr int kLongHeadBytes = 16;
// A fragment has at most a few megabytes.
constexpr qint64 kLargestBoxBytes = 64LL * 1024 * 1024;

/// Size of the box that begins with these bytes; 0 when it reaches to the end of the file; negative when the
/// header is incomplete or invalid.
qint64 boxBytes(const QByteArray& head) {
  if (head.size() < kHeadBytes)
    return -1;
  const auto bytes = qFromBigEndian<quint32>(head.constData());
  if (bytes != 1)
    return bytes == 0 || bytes >= kHeadBytes ? static_cast<qint64>(bytes) : -1;
  if (head.size() < kLongHeadBytes)
    return -1;
  const auto longBytes = qFromBigEndian<qint64>(head.constData() + kHeadBytes);
  return longBytes >= kLongHeadBytes ? longBytes : -1;
}

// Flags of the boxes of a fragment, by ISO/IEC 14496-12. A box with flags has them behind its head.
constexpr quint32 kTrackBase = 0x1;
constexpr quint32 kTrackDescription = 0x2;
constexpr quint32 kTrackDuration = 0x8;
constexpr quint32 kTrackSize = 0x10;
constexpr quint32 kTrackFlags = 0x20;
constexpr quint32 kRunOffset = 0x1;
constexpr quint32 kRunFirstFlags = 0x4;
constexpr quint32 kRunDuration = 0x100;
constexpr quint32 kRunSize = 0x200;
constexpr int kFieldBytes = 4;
constexpr int kFlagsBytes = 12;  // head, version and flags

bool isBox(const std::uint8_t* box, const char* kind) {
  return std::memcmp(box + kFieldBytes, kind, kFieldBytes) == 0;
}

template <typename Action>
void forEachBox(std::uint8_t* data, qint64 size, Action action) {
  while (size >= kHeadBytes) {
    const qint64 bytes = qFromBigEndian<quint32>(data);
    if (bytes < kFlagsBytes || bytes > size)
      return;
    action(data, bytes);
    data += bytes;
    size -= bytes;
  }
}

quint32 flagsOf(const std::uint8_t* box) {
  return qFromBigEndian<quint32>(box + kHeadBytes) & 0xffffff;
}

/// The bytes of those fields of the box that its flags say are there.
int fieldBytes(quint32 flags, quint32 fields) {
  return kFieldBytes * qPopulationCount(flags & fields);
}

/// The inside of a "traf".
bool completeTrack(std::uint8_t* data, qint64 size) {
  std::uint8_t* head = nullptr;
  quint32 firstSize = 0;
  bool lacksSize = false;
  forEachBox(data, size, [&](std::uint8_t* box, qint64 bytes) {
    if (isBox(box, "tfhd"))
      head = box;
    if (!isBox(box, "trun"))
      return;
    const quint32 flags = flagsOf(box);
    // Behind the number of samples.
    const int at = kFlagsBytes + kFieldBytes + fieldBytes(flags, kRunOffset | kRunFirstFlags | kRunDuration);
    if (!(flags & kRunSize))
      lacksSize = true;
    else if (firstSize == 0 && at + kFieldBytes <= bytes)
      firstSize = qFromBigEndian<quint32>(box + at);
  });
  if (!head || !lacksSize || firstSize == 0)
    return false;
  const quint32 flags = flagsOf(head);
  if ((flags & kTrackSize) || !(flags & kTrackFlags))
    return false;
  // Behind the number of the track; the base takes two fields.
  const int at = kFlagsBytes + kFieldBytes + 2 * fieldBytes(flags, kTrackBase) +
                 fieldBytes(flags, kTrackDescription | kTrackDuration);
  qToBigEndian<quint32>((flags & ~kTrackFlags) | kTrackSize, head + kHeadBytes);
  qToBigEndian<quint32>(firstSize, head + at);
  return true;
}

template <typename Number>
void moveBy(std::uint8_t* field, qint64 bytes) {
  qToBigEndian<Number>(static_cast<Number>(qFromBigEndian<Number>(field) + static_cast<Number>(bytes)),
                       field);
}

template <typename Number>
void moveChunks(std::uint8_t* box, qint64 boxBytes, qint64 bytes) {
  std::uint8_t* field = box + kFlagsBytes + kFieldBytes;
  for (auto count = qFromBigEndian<quint32>(box + kFlagsBytes); count > 0; --count) {
    if (field + sizeof(Number) > box + boxBytes)
      return;
    moveBy<Number>(field, bytes);
    field += sizeof(Number);
  }
}

/// Moves all offsets into the file in the inside of a "moov" or "moof".
void moveOffsets(std::uint8_t* data, qint64 size, qint64 by) {
  forEachBox(data, size, [by](std::uint8_t* box, qint64 bytes) {
    constexpr const char* kParents[] = {"trak", "mdia", "minf", "stbl", "traf"};
    const bool isParent = std::any_of(std::begin(kParents), std::end(kParents),
                                      [box](const char* kind) { return isBox(box, kind); });
    if (isParent)
      moveOffsets(box + kHeadBytes, bytes - kHeadBytes, by);
    else if (bytes < kFlagsBytes + kFieldBytes)
      return;
    else if (isBox(box, "stco"))
      moveChunks<quint32>(box, bytes, by);
    else if (isBox(box, "co64"))
      moveChunks<quint64>(box, bytes, by);
    else if (isBox(box, "tfhd") && (flagsOf(box) & kTrackBase) && bytes >= kFlagsBytes + 3 * kFieldBytes)
      moveBy<quint64>(box + kFlagsBytes + kFieldBytes, by);
  });
}

}  // namespace

qint64 dropPartialBox(const QString& fileName) {
  QFile file(fileName);
  if (!file.open(QIODevice::ReadWrite) || file.read(kHeadBytes).mid(4) != "ftyp")
    return 0;
  const qint64 size = file.size();
  for (qint64 at = 0; at < size;) {
    file.seek(at);
    const qint64 bytes = boxBytes(file.read(kLongHeadBytes));
    if (bytes == 0)
      return 0;
    if (bytes < 0 || bytes > size - at)
      return file.resize(at) ? size - at : 0;
    at += bytes;
  }
  return 0;
}

int addDefaultSizes(std::uint8_t* data, qint64 size) {
  if (size < kLongHeadBytes || !isBox(data, "moof") || !isBox(data + kHeadBytes, "mfhd"))
    return 0;
  int completed = 0;
  forEachBox(data + kHeadBytes, std::min<qint64>(size, qFromBigEndian<quint32>(data)) - kHeadBytes,
             [&](std::uint8_t* box, qint64 bytes) {
               if (isBox(box, "traf") && completeTrack(box + kHeadBytes, bytes - kHeadBytes))
                 ++completed;
             });
  return completed;
}

std::optional<QByteArray> readFragment(QFile& file, qint64& at) {
  QByteArray begin;
  QByteArray data;
  for (qint64 next = at;;) {
    file.seek(next);
    QByteArray box = file.read(kLongHeadBytes);
    if (box.size() < kHeadBytes)
      return QByteArray();
    const qint64 bytes = boxBytes(box);
    // The data that are being written say "to the end of the file".
    if (bytes == 0)
      return QByteArray();
    if (bytes < 0 || bytes > kLargestBoxBytes)
      return std::nullopt;
    file.seek(next);
    box = file.read(bytes);
    if (box.size() < bytes)
      return QByteArray();
    next += bytes;
    const QByteArray kind = box.mid(kFieldBytes, kFieldBytes);
    if (kind == "moov" || kind == "moof") {
      moveOffsets(reinterpret_cast<std::uint8_t*>(box.data()) + kHeadBytes, bytes - kHeadBytes, bytes);
      at = next;
      return begin + box + data;
    }
    if (kind == "ftyp")
      begin += box;
    else if (kind == "free" || kind == "mdat")
      data += box;
    else
      return std::nullopt;
  }
}

}  // namespace korvia
