#include "Mp4Times.h"

#include <QtEndian>
#include <algorithm>

namespace korvia {

namespace {

constexpr qint64 kHeadBytes = 8;
constexpr qint64 kVersionBytes = 4;

void clearIn(char* data, qint64 size) {
  qint64 at = 0;
  while (size - at >= kHeadBytes) {
    const qint64 length = qFromBigEndian<quint32>(data + at);
    if (length < kHeadBytes || length > size - at) {
      return;
    }
    const QByteArray type(data + at + 4, 4);
    char* const body = data + at + kHeadBytes;
    const qint64 bodyBytes = length - kHeadBytes;
    if (type == "moov" || type == "trak" || type == "mdia") {
      clearIn(body, bodyBytes);
    } else if (type == "mvhd" || type == "tkhd" || type == "mdhd") {
      const qint64 timesBytes = bodyBytes > 0 && body[0] == 1 ? 16 : 8;
      if (bodyBytes >= kVersionBytes + timesBytes) {
        std::fill_n(body + kVersionBytes, timesBytes, '\0');
      }
    }
    at += length;
  }
}

}  // namespace

void clearMp4Times(QByteArray& file) {
  clearIn(file.data(), file.size());
}

}  // namespace korvia
