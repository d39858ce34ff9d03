#include "RecordFileName.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "DrivePath.h"

namespace korvia {

namespace {

constexpr int kMaxNameBytes = 200;
constexpr int kMaxNumber = 9999;

const QString kProgramName = QStringLiteral("${PROGRAMNAME}");
const QString kTime = QStringLiteral("${TIME}");

QString withDashes(QString text) {
  for (const char separator : {'/', '\\', ':'})
    text.replace(QLatin1Char(separator), QLatin1Char('-'));
  return text;
}

/// Separators in the time make folders.
QString timeText(const QDateTime& time, const QString& format) {
  QString text = time.toString(format);
  text.replace(QLatin1Char('\\'), QLatin1Char('/'));
  text.replace(QLatin1Char(':'), QLatin1Char('-'));
  return text;
}

QString cutToBytes(QString text, int bytes) {
  while (text.toUtf8().size() > bytes)
    text.chop(text.at(text.size() - 1).isLowSurrogate() ? 2 : 1);
  return text;
}

}  // namespace

QString RecordFileName::make(const QString& nameFormat, const QString& timeFormat, const QString& programName,
                             const QDateTime& time) {
  const QString program = DrivePath::safeFileName(withDashes(programName));
  const QString ownTime = timeText(time, timeFormat);

  // Split before the replacements, so that a program named "${TIME}" keeps its name.
  QStringList parts = withDashes(nameFormat).split(kProgramName);
  int fixedBytes = 0;
  for (QString& part : parts) {
    part.replace(kTime, ownTime);
    fixedBytes += part.toUtf8().size();
  }
  const int places = parts.size() - 1;
  const int roomForProgram = places > 0 ? std::max(0, kMaxNameBytes - fixedBytes) / places : 0;
  const QString name = parts.join(cutToBytes(program, roomForProgram));
  QStringList folders = name.split(QLatin1Char('/'), Qt::SkipEmptyParts);
  for (QString& folder : folders)
    folder = DrivePath::safeFileName(folder);
  return folders.isEmpty() ? DrivePath::safeFileName(name) : folders.join(QLatin1Char('/'));
}

QString RecordFileName::reserve(const QString& folder, const QString& name, const QString& suffix,
                                QString* error) {
  const QString path = DrivePath::resolve(folder);
  // A drive that is not mapped would become a folder with backslashes in the working directory.
  if (!QDir::isAbsolutePath(path)) {
    *error = QStringLiteral("\"%1\" is no folder of this machine").arg(folder);
    return {};
  }
  const QString ownFolder = QFileInfo(QDir(path).filePath(name)).path();
  if (!QDir().mkpath(ownFolder)) {
    *error = QStringLiteral("the folder \"%1\" cannot be made").arg(ownFolder);
    return {};
  }
  for (int number = 1; number <= kMaxNumber; ++number) {
    const QString numbered = number == 1 ? name : QStringLiteral("%1 (%2)").arg(name).arg(number);
    QFile file(QDir(path).filePath(numbered + QLatin1Char('.') + suffix));
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
      return file.fileName();
    if (!QFileInfo::exists(file.fileName())) {
      *error = QStringLiteral("\"%1\" cannot be written : %2").arg(file.fileName(), file.errorString());
      return {};
    }
  }
  *error = QStringLiteral("all names like \"%1\" are taken").arg(name);
  return {};
}

}  // namespace korvia
