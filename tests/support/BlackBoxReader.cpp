#include "BlackBoxReader.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace korvia::test {

BlackBoxMatch line(const QString& direction, const QString& name, const QJsonArray& args) {
  return [=](const BlackBoxLine& candidate) {
    if (candidate.direction != direction || candidate.name != name || candidate.args.size() < args.size())
      return false;
    for (int i = 0; i < args.size(); ++i) {
      if (!args[i].isNull() && args[i] != candidate.args[i])
        return false;
    }
    return true;
  };
}

const QVector<BlackBoxLine>& BlackBoxReader::lines() {
  if (!file_.isOpen() && !file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
    return lines_;
  rest_ += file_.readAll();
  int begin = 0;
  for (int end = rest_.indexOf('\n'); end >= 0; end = rest_.indexOf('\n', begin)) {
    const QJsonDocument document = QJsonDocument::fromJson(rest_.mid(begin, end - begin));
    begin = end + 1;
    if (!document.isObject()) {
      ++broken_;
      continue;
    }
    const QJsonObject object = document.object();
    lines_.append({static_cast<qint64>(object[QStringLiteral("t")].toDouble()),
                   object[QStringLiteral("dir")].toString(), object[QStringLiteral("name")].toString(),
                   object[QStringLiteral("object")].toInt(), object[QStringLiteral("args")].toArray()});
  }
  rest_.remove(0, begin);
  return lines_;
}

int BlackBoxReader::waitFor(const BlackBoxMatch& match, int from, int timeoutMs) {
  int next = from;
  int found = -1;
  const bool isThere = QTest::qWaitFor(
      [&] {
        const QVector<BlackBoxLine>& all = lines();
        for (; next < all.size() && found < 0; ++next) {
          if (match(all[next]))
            found = next;
        }
        return found >= 0;
      },
      timeoutMs);
  return isThere ? found : -1;
}

QVector<BlackBoxLine> BlackBoxReader::select(const BlackBoxMatch& match, int from) {
  QVector<BlackBoxLine> selected;
  const QVector<BlackBoxLine>& all = lines();
  std::copy_if(all.begin() + std::min(from, all.size()), all.end(), std::back_inserter(selected), match);
  return selected;
}

}  // namespace korvia::test
