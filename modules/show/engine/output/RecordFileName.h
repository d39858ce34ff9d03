// File names of recordings: a name format with "${PROGRAMNAME}" and "${TIME}" replaced, cleaned so that
// foreign texts cannot leave the record folder, and unique for each recording. The time may name folders, for
// example one a day. Stateless, any thread.
#pragma once
#include <QDateTime>
#include <QString>

namespace korvia {

class RecordFileName {
 public:
  /// The file name without suffix, never empty; path separators in the time make folders before it. Each of
  /// these has at most 200 bytes of UTF-8. `timeFormat` is a QDateTime format; separators in the name format
  /// and in the program name become dashes. A long program name is truncated, the time is not.
  static QString make(const QString& nameFormat, const QString& timeFormat, const QString& programName,
                      const QDateTime& time);

  /// Makes the folder of a drive path and the folders of the name, and in them an empty file "NAME.SUFFIX",
  /// or "NAME (2).SUFFIX" and so on when the name exists; an existing file is never changed. Returns the path
  /// of the file on this machine; on failure an empty text, with the reason in `error`.
  static QString reserve(const QString& folder, const QString& name, const QString& suffix, QString* error);
};

}  // namespace korvia
