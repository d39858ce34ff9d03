// Reads a black box while its program still writes it, and waits for lines. Test thread.
#pragma once
#include <QFile>
#include <QJsonArray>
#include <QString>
#include <QVector>
#include <functional>

namespace korvia::test {

struct BlackBoxLine {
  qint64 timeMs = 0;
  QString direction;  ///< "post", "result" or "call"
  QString name;
  int object = 0;
  QJsonArray args;
};

using BlackBoxMatch = std::function<bool(const BlackBoxLine&)>;

/// Lines of a direction and name whose arguments begin with `args`; a null among them stands for anything.
BlackBoxMatch line(const QString& direction, const QString& name, const QJsonArray& args = {});

class BlackBoxReader {
 public:
  explicit BlackBoxReader(const QString& fileName) : file_(fileName) {}

  /// All whole lines so far.
  const QVector<BlackBoxLine>& lines();
  /// Waits for a line at `from` or later. Its index, -1 when none comes in time.
  int waitFor(const BlackBoxMatch& match, int from = 0, int timeoutMs = 15000);
  QVector<BlackBoxLine> select(const BlackBoxMatch& match, int from = 0);
  /// Lines that did not hold a JSON object.
  int brokenLines() const { return broken_; }

 private:
  QFile file_;
  QByteArray rest_;
  QVector<BlackBoxLine> lines_;
  int broken_ = 0;
};

}  // namespace korvia::test
