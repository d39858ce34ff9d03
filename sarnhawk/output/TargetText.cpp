#include "output/TargetText.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

QString text(const char* source) {
  return QCoreApplication::translate("TargetText", source);
}

int badness(KorviaShowTargetState state) {
  switch (state) {
    case KorviaShowTargetState::Failed:
      return 4;
    case KorviaShowTargetState::Lost:
      return 3;
    case KorviaShowTargetState::Connecting:
      return 2;
    case KorviaShowTargetState::Up:
      return 1;
    case KorviaShowTargetState::Finished:
      break;
  }
  return 0;
}

}  // namespace

bool TargetText::isDown(const tagKorviaShowTargetReport& target) {
  return target.state == KorviaShowTargetState::Lost || target.state == KorviaShowTargetState::Failed;
}

QList<tagKorviaShowTargetReport> TargetText::worstFirst(QList<tagKorviaShowTargetReport> targets) {
  std::stable_sort(targets.begin(), targets.end(),
                   [](const tagKorviaShowTargetReport& left, const tagKorviaShowTargetReport& right) {
                     const int difference = badness(left.state) - badness(right.state);
                     return difference != 0 ? difference > 0 : left.upSeconds < right.upSeconds;
                   });
  return targets;
}

QString TargetText::state(const tagKorviaShowTargetReport& target) {
  switch (target.state) {
    case KorviaShowTargetState::Connecting:
      return text("connecting");
    case KorviaShowTargetState::Up:
      return text("up for %1").arg(duration(target.upSeconds));
    case KorviaShowTargetState::Lost:
      return target.retrySeconds > 0 ? text("lost, retry in %1 s").arg(target.retrySeconds)
                                     : text("lost, retrying");
    case KorviaShowTargetState::Failed:
      return text("failed");
    case KorviaShowTargetState::Finished:
      break;
  }
  return text("ended");
}

QString TargetText::duration(qint64 seconds) {
  const auto two = [](qint64 value) { return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0')); };
  return QStringLiteral("%1:%2:%3").arg(two(seconds / 3600), two(seconds / 60 % 60), two(seconds % 60));
}
