// Which streams others may push to the income server: the names in the channels' records. The console hands
// the records over; the income server asks before each publisher. One for the process, any thread.
#pragma once
#include <QSet>
#include <QString>
#include <QStringList>

#include "ThreadSafety.h"

namespace korvia {

class PublishRules {
 public:
  static PublishRules& instance();

  /// Replaces the list. A text is "/income/" and a name of 1 to 64 letters, digits, "_" and "-". An empty
  /// text is skipped; any other form is logged once for as long as it stands in the list, and allows nothing.
  void setIncomePaths(const QStringList& incomePaths);

  /// False for every name until the first list.
  bool allows(const QString& name) const;

 private:
  mutable Mutex mutex_;
  QSet<QString> names_ GUARDED_BY(mutex_);
  QSet<QString> badPaths_ GUARDED_BY(mutex_);  // that were logged
};

}  // namespace korvia
