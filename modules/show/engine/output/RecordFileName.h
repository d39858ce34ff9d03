// Names of recordings: a name format with "${PROGRAMNAME}" and "${TIME}" filled in, cleaned so that texts
// from outside cannot leave the record folder, and a file of its own for each recording. Stateless, any
// thread.
#pragma once
#include <QDateTime>
#include <QString>

namespace korvia {

class RecordFileName {
 public:
  /// The file name without suffix: one path component, at most 200 bytes of UTF-8, never empty. `timeFormat`
  /// is a QDateTime format; separators in the time become dashes, since the time is part of a name and not a
  /// folder. A long program name is cut, the time stays whole.
  static QString make(const QString& nameFormat, const QString& timeFormat, const QString& programName,
                      const QDateTime& time);

  /// Makes the folder of a drive path, and in it an empty file "NAME.SUFFIX", or "NAME (2).SUFFIX" and so on
  /// when the name is taken; a file that exists is never touched. Gives the path of the file on this machine;
  /// on failure an empty text with the reason in `error`.
  static QString reserve(const QString& folder, const QString& name, const QString& suffix, QString* error);
};

}  // namespace korvia
