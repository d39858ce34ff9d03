// Maps the drive paths of the records ("d:\records\vod\0\") to paths of this machine, and foreign texts to
// file names. Only this class knows the folder of a drive. Stateless, usable from any thread.
#pragma once
#include <QString>

namespace korvia {

class DrivePath {
 public:
  /// Path of this machine for any path of the program.
  ///
  /// A drive path (letter of either case, colon, separator or end) goes below the folder of its drive:
  /// KORVIA_DRIVE_<LETTER>, for drive d by default "~/Korvia/d". A drive without a folder leaves the text as
  /// it is. Any other path passes unchanged, unless it has back-slashes and does not exist as it stands: then
  /// it comes back with slashes. A trailing separator is kept. Parts that climb above the drive are dropped.
  static QString resolve(const QString& path);

  /// Folder of a drive without a trailing slash; empty for a drive without a folder and for anything but a
  /// letter.
  static QString driveFolder(QChar letter);

  /// A single file name made from a foreign text: without separators, "..", characters that file systems
  /// refuse, control and invisible characters; at most 200 bytes of UTF-8 and never empty ("unnamed"). A
  /// suffix can still be appended.
  static QString safeFileName(const QString& text);
};

}  // namespace korvia
