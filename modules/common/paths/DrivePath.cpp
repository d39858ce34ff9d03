#include "DrivePath.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QVector>
#include <cstring>
#include <utility>

#include "HomeFolder.h"

namespace korvia {

namespace {

constexpr int kMaxFileNameBytes = 200;

bool isSeparator(QChar c) {
  return c == QLatin1Char('\\') || c == QLatin1Char('/');
}

bool isDriveLetter(QChar c) {
  return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
}

bool isDrivePath(const QString& path) {
  return path.size() >= 2 && isDriveLetter(path.at(0)) && path[1] == QLatin1Char(':') &&
         (path.size() == 2 || isSeparator(path[2]));
}

QString withSlashes(QString path) {
  return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

/// The parts of a path below its drive, without "." and empty ones; ".." cannot climb above the drive.
QString insideDrive(const QString& path) {
  QStringList kept;
  const QStringList parts = withSlashes(path).split(QLatin1Char('/'), Qt::SkipEmptyParts);
  for (const QString& part : parts) {
    if (part == QLatin1String("..")) {
      if (!kept.isEmpty())
        kept.removeLast();
    } else if (part != QLatin1String(".")) {
      kept.append(part);
    }
  }
  return kept.join(QLatin1Char('/'));
}

bool isUnwelcomeInFileName(uint codePoint) {
  switch (QChar::category(codePoint)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return true;
    default:
      return codePoint < 128 && std::strchr("\\/:*?\"<>|", static_cast<int>(codePoint));
  }
}

}  // namespace

QString DrivePath::driveFolder(QChar letter) {
  if (!isDriveLetter(letter))
    return {};
  const QByteArray variable = QByteArray("KORVIA_DRIVE_") + letter.toUpper().toLatin1();
  QString folder = QFile::decodeName(qgetenv(variable.constData()));
  if (folder.isEmpty() && letter.toLower() == QLatin1Char('d'))
    folder = homeFolder() + QStringLiteral("/Korvia/d");
  while (folder.size() > 1 && folder.endsWith(QLatin1Char('/')))
    folder.chop(1);
  return folder;
}

QString DrivePath::resolve(const QString& path) {
  if (isDrivePath(path)) {
    const QString folder = driveFolder(path.at(0));
    if (folder.isEmpty())
      return path;
    QString mapped = folder;
    const QString inside = insideDrive(path.mid(2));
    if (!inside.isEmpty())
      mapped += (folder.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/")) + inside;
    if (path.size() > 2 && isSeparator(path.back()) && !mapped.endsWith(QLatin1Char('/')))
      mapped += QLatin1Char('/');
    return mapped;
  }
  if (path.contains(QLatin1Char('\\')) && !QFileInfo::exists(path))
    return withSlashes(path);
  return path;
}

QString DrivePath::safeFileName(const QString& text) {
  QVector<uint> kept;
  for (const uint codePoint : text.toUcs4()) {
    if (codePoint != 0 && !isUnwelcomeInFileName(codePoint))
      kept.append(codePoint);
  }
  QString name = QString::fromUcs4(kept.constData(), kept.size());
  while (name.contains(QLatin1String("..")))
    name.replace(QLatin1String(".."), QLatin1String("."));

  // A leading dot hides the file, a leading dash makes it look like an option, and other systems drop dots
  // and blanks at the end.
  const auto isEdge = [](QChar c) { return c == QLatin1Char('.') || c.isSpace(); };
  int first = 0;
  while (first < name.size() && (isEdge(name.at(first)) || name.at(first) == QLatin1Char('-')))
    ++first;
  name.remove(0, first);
  if (name.size() > kMaxFileNameBytes)
    name.truncate(kMaxFileNameBytes + 1);  // no unit is less than a byte
  while (name.toUtf8().size() > kMaxFileNameBytes)
    name.chop(std::as_const(name).back().isLowSurrogate() ? 2 : 1);
  while (!name.isEmpty() && isEdge(std::as_const(name).back()))
    name.chop(1);
  return name.isEmpty() ? QStringLiteral("unnamed") : name;
}

}  // namespace korvia
