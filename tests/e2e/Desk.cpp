#include "Desk.h"

#include <QtTest>

#include "support/PictureStats.h"

namespace korvia::test {

namespace {

constexpr double kDarkest = 12;
constexpr double kFlattest = 12;
constexpr double kStillest = 0.002;
// Questions have "Yes" and "No" side by side in their lower right corner.
constexpr QPoint kYesFromCorner(140, 24);

quint64 idOf(const QJsonValue& window) {
  return static_cast<quint64>(window.toObject()[QStringLiteral("winId")].toDouble());
}

}  // namespace

QJsonObject Desk::windows() {
  const auto opened = korvia_.blackBox().select(line("post", "ShowEventOpen"));
  return opened.isEmpty() ? QJsonObject() : opened.first().args.at(1).toObject();
}

quint64 Desk::windowOf(const QString& name) {
  return idOf(windows()[name]);
}

quint64 Desk::strip(int index) {
  return idOf(windows()[QStringLiteral("media")].toArray().at(index));
}

bool Desk::showsPicture(quint64 window, int timeoutMs) {
  return QTest::qWaitFor(
      [&] {
        const PictureStats stats = statsOf(display_.grabWindow(window));
        return stats.mean > kDarkest && stats.deviation > kFlattest;
      },
      timeoutMs);
}

bool Desk::isMoving(quint64 window, int timeoutMs) {
  const QImage before = display_.grabWindow(window);
  if (before.isNull())
    return false;
  return QTest::qWaitFor([&] { return differenceOf(before, display_.grabWindow(window)) > kStillest; },
                         timeoutMs);
}

bool Desk::runsOn(int frames, int timeoutMs) {
  int first = -2;
  int before = -1;
  // The status is a second old at most, and empty in the program's first one: counting begins with its next
  // change.
  return QTest::qWaitFor(
      [&] {
        const int now = korvia_.frames();
        if (first == -2)
          first = now;
        else if (before < 0 && now != first)
          before = now;
        return before >= 0 && now >= before + frames;
      },
      timeoutMs);
}

bool Desk::answerYes() {
  const auto question = display_.findWindow(QStringLiteral("Message"));
  if (!question)
    return false;
  const QRect box = display_.geometryOf(*question);
  return display_.click(box.bottomRight() - kYesFromCorner);
}

}  // namespace korvia::test
