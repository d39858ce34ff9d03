#include "HomeFolder.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <vector>

namespace korvia {

namespace {

constexpr std::size_t kPasswdBytes = 16384;

QByteArray passwdHome() {
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> buffer(kPasswdBytes);
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found || !found->pw_dir)
    return {};
  return found->pw_dir;
}

}  // namespace

QString homeFolder() {
  for (const QByteArray& candidate : {qgetenv("HOME"), passwdHome()}) {
    QString folder = QDir::cleanPath(QFile::decodeName(candidate));
    if (QDir::isAbsolutePath(folder) && folder != QLatin1String("/"))
      return folder;
  }
  return QStringLiteral("%1/korvia-%2").arg(QDir::tempPath()).arg(getuid());
}

}  // namespace korvia
