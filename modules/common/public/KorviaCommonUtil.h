// File and network helpers that several subsystems share. All paths go through korvia::DrivePath. Stateless,
// usable from any thread.
#pragma once
#include <QByteArray>
#include <QString>

class KorviaCommonUtil {
 public:
  /// Makes the folder, with its parents when withParents is set. True when the folder exists afterwards.
  static bool makesureExistDir(const QString& path, bool withParents);

  /// Reads a whole regular file. False, with content cleared, for a missing or unreadable file, for anything
  /// that is no regular file, and for more than 64 MiB.
  static bool readFileContent(const QString& path, QByteArray& content);

  /// First IPv4 address of a running interface that is not the loopback; "127.0.0.1" when there is none.
  static QString getIp();
};
