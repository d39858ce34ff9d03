#include "ShowDataSetup.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "HostLogCategories.h"

namespace korvia {

int copyMissingFiles(const QString& from, const QString& to) {
  const QDir source(from);
  const QDir target(to);
  int copies = 0;
  QDirIterator files(from, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    const QString file = files.next();
    const QString copy = target.absoluteFilePath(source.relativeFilePath(file));
    if (QFile::exists(copy))
      continue;
    if (QDir().mkpath(QFileInfo(copy).absolutePath()) && QFile::copy(file, copy))
      ++copies;
    else
      qCWarning(lcShowData, "failed to copy show data : %s", qUtf8Printable(copy));
  }
  return copies;
}

}  // namespace korvia
