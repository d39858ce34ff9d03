#include "FragmentedFile.h"

#include <QFile>
#include <QtEndian>

namespace korvia {

namespace {

constexpr int kHeadBytes = 8;
constexpr int kLongHeadBytes = 16;

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

}  // namespace korvia
