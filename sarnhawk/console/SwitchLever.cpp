#include "console/SwitchLever.h"

#include <QSignalBlocker>

#include "console/FocusKeeper.h"

namespace {

constexpr int kOverhang = 6;
constexpr int kWidth = 50;

}  // namespace

SwitchLever::SwitchLever(QWidget* parent) : GSlider(kOverhang, parent) {
  setObjectName(QStringLiteral("_switchProcessPosVerticalSlider"));
  setFixedWidth(kWidth);
  setRange(0, kRange);
  setSingleStep(1);
  setPageStep(100);
  setValue(0);
  setOrientation(Qt::Vertical);
  setInvertedControls(true);
  setTickPosition(QSlider::TicksBothSides);
  setTickInterval(100);
  // The lever is hidden for a moment at the end of each switch. The layout keeps its room, so that the desk
  // does not move.
  QSizePolicy policy = sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
}

float SwitchLever::positionOf(int value) {
  return static_cast<float>(value / double{kRange});
}

void SwitchLever::showPosition(float position) {
  const bool finished = position == 1.0F;
  FocusKeeper focus;
  if (finished) {
    focus.takeFrom(this);
    hide();
  }
  {
    const QSignalBlocker blocker(this);
    // The value is truncated, also when the lever's own position comes back.
    setValue(finished ? 0 : static_cast<int>(position * kRange));
    setToolTip(QStringLiteral("%1%").arg(finished ? 0.0 : static_cast<double>(position * 100.0F), 0, 'g'));
  }
  if (finished) {
    show();
    focus.giveBack();
  }
}
