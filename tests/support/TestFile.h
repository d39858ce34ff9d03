// Files that a test writes for itself. One thread.
#pragma once
#include <QFile>
#include <QTemporaryDir>

namespace korvia::test {

/// The path of a new file with these bytes in the folder; empty when it cannot be written.
inline QString writeTestFile(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes) {
  QFile file(folder.filePath(name));
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

}  // namespace korvia::test
