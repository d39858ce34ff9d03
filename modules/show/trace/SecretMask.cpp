#include "SecretMask.h"

#include <QRegularExpression>
#include <QUrl>
#include <algorithm>

namespace korvia {

namespace {

const QString kMask = QStringLiteral("***");

/// Parameter names are matched by parts, since services spell them in many ways: access_token, wsSecret.
bool isSecretName(const QString& name) {
  static const char* const parts[] = {"token", "streamid", "pass", "secret", "auth", "sign", "playpath"};
  const QString plain = QUrl::fromPercentEncoding(name.toUtf8()).toLower();
  return plain.endsWith(QLatin1String("key")) ||
         std::any_of(std::begin(parts), std::end(parts),
                     [&](const char* part) { return plain.contains(QLatin1String(part)); });
}

/// `query` begins with the question mark.
QString maskQuery(const QString& query) {
  static const QRegularExpression parameter(QStringLiteral("([?&;])([^=&;]*)=([^&;]*)"));
  QString masked;
  int done = 0;
  auto matches = parameter.globalMatch(query);
  while (matches.hasNext()) {
    const auto match = matches.next();
    if (!isSecretName(match.captured(2)))
      continue;
    masked += query.midRef(done, match.capturedStart(3) - done);
    masked += kMask;
    done = match.capturedEnd(3);
  }
  return masked + query.midRef(done);
}

/// Length of the user part with its at sign, 0 for none. A password may contain a slash: if the text before
/// it looks like a port but is no number, it is the beginning of a password.
int userPartLength(const QString& rest) {
  static const QRegularExpression authorityDelimiter(QStringLiteral("[/?#]"));
  const int authorityEnd = rest.indexOf(authorityDelimiter);
  const QString authority = rest.left(authorityEnd);
  const int at = authority.lastIndexOf(QLatin1Char('@'));
  if (at >= 0)
    return at + 1;
  static const QRegularExpression brokenPort(QStringLiteral(":(?![0-9]*$)[^\\]]*$"));
  if (!authority.contains(brokenPort))
    return 0;
  return rest.left(rest.indexOf(QLatin1Char('?'))).lastIndexOf(QLatin1Char('@')) + 1;
}

bool looksLikeStreamKey(const QString& segment) {
  static const QRegularExpression key(QStringLiteral("^(?=.*[0-9])[A-Za-z0-9_-]{12,}$"));
  return segment.contains(key);
}

/// `path` is empty or begins with a slash. The last non-empty part is the name of the stream.
QString maskPath(const QString& path, bool always) {
  int end = path.size();
  while (end > 0 && path[end - 1] == QLatin1Char('/'))
    --end;
  const int begin = path.lastIndexOf(QLatin1Char('/'), end - 1) + 1;
  if (end == 0 || begin == 0)
    return path;
  if (!always && !looksLikeStreamKey(path.mid(begin, end - begin)))
    return path;
  return path.left(begin) + kMask + path.midRef(end);
}

QString maskUrl(const QString& scheme, QString rest) {
  const int userLength = userPartLength(rest);
  QString masked = scheme + QLatin1String("://");
  if (userLength > 1)
    masked += kMask + QLatin1Char('@');
  else
    masked += rest.leftRef(userLength);
  rest.remove(0, userLength);

  const int queryBegin = rest.indexOf(QLatin1Char('?'));
  const QString place = queryBegin < 0 ? rest : rest.left(queryBegin);
  const QString query = queryBegin < 0 ? QString() : rest.mid(queryBegin);
  const int pathBegin = place.indexOf(QLatin1Char('/'));
  const bool rtmp = scheme.startsWith(QLatin1String("rtmp"), Qt::CaseInsensitive);
  const bool srt = scheme.compare(QLatin1String("srt"), Qt::CaseInsensitive) == 0;
  if (pathBegin < 0 || (!rtmp && !srt))
    masked += place;
  else
    masked += place.leftRef(pathBegin) + maskPath(place.mid(pathBegin), rtmp);
  return masked + maskQuery(query);
}

/// RTMP clients accept options after the URL, separated by a blank.
QString maskOptions(const QString& text) {
  static const QRegularExpression option(QStringLiteral("(\\s)(\\w+)=(\\S+)"));
  QString masked;
  int done = 0;
  auto matches = option.globalMatch(text);
  while (matches.hasNext()) {
    const auto match = matches.next();
    if (!isSecretName(match.captured(2)))
      continue;
    masked += text.midRef(done, match.capturedStart(3) - done);
    masked += kMask;
    done = match.capturedEnd(3);
  }
  return masked + text.midRef(done);
}

}  // namespace

QString maskSecrets(const QString& text) {
  if (!text.contains(QLatin1String("://")))
    return text;
  static const QRegularExpression url(QStringLiteral("([A-Za-z][A-Za-z0-9+.-]*)://([^\\s\"'<>]*)"));
  QString masked;
  int done = 0;
  bool rtmp = false;
  auto matches = url.globalMatch(text);
  while (matches.hasNext()) {
    const auto match = matches.next();
    masked += text.midRef(done, match.capturedStart() - done);
    masked += maskUrl(match.captured(1), match.captured(2));
    rtmp = rtmp || match.captured(1).startsWith(QLatin1String("rtmp"), Qt::CaseInsensitive);
    done = match.capturedEnd();
  }
  masked += text.midRef(done);
  return rtmp ? maskOptions(masked) : masked;
}

}  // namespace korvia
