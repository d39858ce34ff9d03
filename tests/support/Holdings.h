// What a process holds, for tests that run long and must leave nothing behind.
#pragma once
#include <malloc.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <cstddef>

// There when the address sanitizer's allocator is; the C library's own figures stay at nought then.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

/// What a process holds when its show stands still.
struct Holdings {
  int threads = 0;
  int descriptors = 0;
  qint64 allocatedKiB = 0;
  qint64 residentKiB = 0;

  QByteArray text() const {
    return QStringLiteral("%1 threads, %2 descriptors, %3 KiB allocated, %4 KiB resident")
        .arg(threads)
        .arg(descriptors)
        .arg(allocatedKiB)
        .arg(residentKiB)
        .toUtf8();
  }
};

inline int entries(const QString& folder) {
  return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

inline qint64 allocatedBytes() {
  if (__sanitizer_get_current_allocated_bytes)
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
  const struct mallinfo2 info = mallinfo2();
  return static_cast<qint64>(info.uordblks + info.hblkhd);
}

inline qint64 residentKiB() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  for (const QByteArray& entry : status.readAll().split('\n')) {
    if (entry.startsWith("VmRSS:"))
      return entry.mid(6).trimmed().split(' ').first().toLongLong();
  }
  return 0;
}

inline Holdings holdingsNow() {
  return {entries(QStringLiteral("/proc/self/task")), entries(QStringLiteral("/proc/self/fd")),
          allocatedBytes() / 1024, residentKiB()};
}
