#include "console/MultimediaClock.h"

#include <QElapsedTimer>

namespace {

std::function<quint32()>& replacedSource() {
  static std::function<quint32()> source;
  return source;
}

}  // namespace

quint32 MultimediaClock::now() {
  if (replacedSource())
    return replacedSource()();
  static const QElapsedTimer timer = [] {
    QElapsedTimer started;
    started.start();
    return started;
  }();
  return static_cast<quint32>(timer.msecsSinceReference() + timer.elapsed());
}

void MultimediaClock::setSource(std::function<quint32()> source) {
  replacedSource() = std::move(source);
}
