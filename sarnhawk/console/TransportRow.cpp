#include "console/TransportRow.h"

#include <QCoreApplication>
#include <QSignalBlocker>
#include <QTime>
#include <iterator>

#include "IKorviaShowSource.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "tagKorviaShowSourceInfo.h"
#include "ui_KorviaSarnhawk.h"

namespace {

constexpr const char* kStateNames[] = {
    QT_TRANSLATE_NOOP("TransportRow", "NothingSpecial"), QT_TRANSLATE_NOOP("TransportRow", "Opening"),
    QT_TRANSLATE_NOOP("TransportRow", "Buffering"),      QT_TRANSLATE_NOOP("TransportRow", "Playing"),
    QT_TRANSLATE_NOOP("TransportRow", "Paused"),         QT_TRANSLATE_NOOP("TransportRow", "Stopped"),
    QT_TRANSLATE_NOOP("TransportRow", "Ended"),          QT_TRANSLATE_NOOP("TransportRow", "Error"),
};

constexpr qint64 kTenthsPerMs = 10;
constexpr qint64 kMsPerDay = 24LL * 60 * 60 * 1000;

struct ButtonSet {
  bool play;
  bool step;
};

constexpr ButtonSet kPlayOnly{true, false};
constexpr ButtonSet kPlayAndStep{true, true};
constexpr ButtonSet kStepOnly{false, true};

// By source kind; kinds without an entry leave the buttons as they are.
constexpr const ButtonSet* kButtonSets[] = {
    nullptr,        // none
    &kPlayOnly,     // movie
    &kPlayAndStep,  // movie list
    &kPlayOnly,     // url
    &kPlayOnly,     // krmp
    &kPlayOnly,     // image
    &kPlayAndStep,  // image list
    &kPlayOnly,     // device
    &kPlayOnly,     // 3d device
    &kPlayOnly,     // color
    &kPlayOnly,     // delay
    &kPlayOnly,     // flash
    &kPlayOnly,     // web
    nullptr,        // office
    &kStepOnly,     // pdf
    &kPlayOnly,     // text
    &kPlayOnly,     // window
    &kPlayOnly,     // screen
    &kPlayOnly,     // income
};
static_assert(std::size(kButtonSets) == SourceKindIncome + 1);

}  // namespace

QString TransportRow::stateName(int state) {
  if (state < 0 || state >= static_cast<int>(std::size(kStateNames)))
    return QString();
  return QCoreApplication::translate("TransportRow", kStateNames[state]);
}

QString TransportRow::timeText(qint64 tenthsOfMs) {
  const qint64 ms = std::max<qint64>(0, tenthsOfMs / kTenthsPerMs) % kMsPerDay;
  return QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)).toString(QStringLiteral("hh:mm:ss"));
}

IKorviaShowSource* TransportRow::source() const {
  return _priv->getSource(static_cast<KorviaShowObjectID>(_priv->getConfig()->pvmChannel));
}

void TransportRow::onWorkTick() {
  IKorviaShowSource* source = this->source();
  setEnabled(source != nullptr);
  if (!source)
    return;
  qint64 duration = 0;
  qint64 time = 0;
  source->getDuration(duration);
  source->getTime(time);
  _ui._mediaDurationLabel->setText(timeText(time) + QLatin1Char('/') + timeText(duration));
  _ui._mediaStateLabel->setText(
      stateName(source->getPlayState()) +
      QStringLiteral(" %1/%2").arg(source->getItemIndex() + 1).arg(source->getItemCount()));
  if (!_seekHeld) {
    qint64 position = 0;
    source->getPosition(position);
    const QSignalBlocker blocker(_ui._seekMediaHorizontalSlider);
    _ui._seekMediaHorizontalSlider->setValue(static_cast<int>(position));
  }
  if (const int* kind = source->getSourceInfo())
    showButtons(*kind);
}

void TransportRow::setEnabled(bool enabled) {
  if (!enabled)
    _focus.takeFrom(_ui._mediaControlWidget);
  _ui._mediaControlWidget->setEnabled(enabled);
  if (enabled)
    _focus.giveBack();
}

void TransportRow::showButtons(int sourceKind) {
  if (sourceKind < 0 || sourceKind >= static_cast<int>(std::size(kButtonSets)) || !kButtonSets[sourceKind])
    return;
  const ButtonSet& set = *kButtonSets[sourceKind];
  _ui._playMediaPushButton->setVisible(set.play);
  _ui._stopMediaPushButton->setVisible(set.play);
  _ui._pauseMediaPushButton->setVisible(set.play);
  _ui._prevMediaPushButton->setVisible(set.step);
  _ui._nextMediaPushButton->setVisible(set.step);
}
