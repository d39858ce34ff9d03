// Turns the drive paths that the records keep ("d:\records\vod\0\") into paths of this machine, and foreign
// texts into file names. The one place that knows where a drive lies. Stateless, usable from any thread.
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

  /// Folder of a drive without a trailing slash; empty for a drive that has none and for no letter.
  static QString driveFolder(QChar letter);

  /// A single file name made of a text that comes from outside: without separators, "..", characters that
  /// file systems refuse, control and invisible characters; at most 200 bytes of UTF-8 and never empty
  /// ("unnamed"). An extension that is appended later still fits into a file name.
  static QString safeFileName(const QString& text);
};

}  // namespace korvia
