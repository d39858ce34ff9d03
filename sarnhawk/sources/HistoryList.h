// A list of texts that the operator used before, kept in the settings of the user. The newest stands on top;
// a text that is listed already keeps its place. Console thread.
#pragma once
#include <QListWidget>
#include <QString>

class HistoryList {
 public:
  enum class Entries { Addresses, Files };

  /// Shows the history of this key in `list`, which is not owned. Files that are missing are shown grey.
  HistoryList(QListWidget* list, const QString& key, Entries entries);

  /// Appends what is stored under the key.
  void load();
  /// Puts a text on top and stores the newest 23, with what another list of this key has stored meanwhile. A
  /// text that is listed already changes nothing.
  void add(const QString& text);
  /// Empties the list on the screen; what is stored stays.
  void clear() { _list->clear(); }

 private:
  /// Asks for the files on another thread, because a drive may be slow.
  void markMissing();

  QListWidget* _list;
  QString _key;
  QStringList _known;  // stored, as far as this list knows
  Entries _entries;
};
