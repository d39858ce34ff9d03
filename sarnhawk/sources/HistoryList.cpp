#include "sources/HistoryList.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "DrivePath.h"
#include "console/runInBackground.h"

namespace {

const QString kOrganisation = QStringLiteral("KorviaMix");
constexpr int kStoredMax = 23;
const QColor kMissingColor(0x5b, 0x64, 0x71);

QStringList rowsOf(const QListWidget* list) {
  QStringList rows;
  for (int row = 0; row < list->count(); ++row)
    rows.append(list->item(row)->text());
  return rows;
}

QStringList missingOf(const QStringList& paths) {
  QStringList missing;
  for (const QString& path : paths) {
    if (!QFileInfo::exists(korvia::DrivePath::resolve(path)))
      missing.append(path);
  }
  return missing;
}

}  // namespace

HistoryList::HistoryList(QListWidget* list, const QString& key, Entries entries)
    : _list(list), _key(key), _entries(entries) {}

void HistoryList::load() {
  _known = QSettings(kOrganisation, QString()).value(_key).toStringList();
  _list->addItems(_known);
  markMissing();
}

void HistoryList::add(const QString& text) {
  QStringList rows = rowsOf(_list);
  if (rows.contains(text))
    return;
  _list->insertItem(0, text);
  QSettings settings(kOrganisation, QString());
  const QStringList stored = settings.value(_key).toStringList();
  QStringList merged{text};
  for (const QString& other : stored) {
    if (!_known.contains(other) && !rows.contains(other) && other != text)
      merged.append(other);
  }
  _known = (merged + rows).mid(0, kStoredMax);
  settings.setValue(_key, _known);
  // Addresses may have passwords in them.
  settings.sync();
  QFile::setPermissions(settings.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

void HistoryList::markMissing() {
  if (_entries != Entries::Files || _list->count() == 0)
    return;
  runInBackground(
      _list, [paths = rowsOf(_list)] { return missingOf(paths); },
      [list = _list](const QStringList& missing) {
        for (int row = 0; row < list->count(); ++row) {
          if (missing.contains(list->item(row)->text()))
            list->item(row)->setForeground(kMissingColor);
        }
      });
}
