#include "console/OutputWatch.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>

#include "console/GOutputNotice.h"
#include "console/OutputSwitches.h"
#include "console/StatisticsFetch.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "output/TargetText.h"
#include "tagKorviaShowOutputParam.h"

namespace {

/// Texts about one output, by its slot; "%1" is the number of frames that were lost.
struct OutputTexts {
  const char* failed;
  const char* framesLost;
  const char* running;
};
constexpr OutputTexts kTexts[] = {
    {QT_TRANSLATE_NOOP("OutputWatch", "Stream failed"),
     QT_TRANSLATE_NOOP("OutputWatch", "Frames lost in the stream: %1"),
     QT_TRANSLATE_NOOP("OutputWatch", "A stream is running")},
    {QT_TRANSLATE_NOOP("OutputWatch", "Recording failed"),
     QT_TRANSLATE_NOOP("OutputWatch", "Frames lost in the recording: %1"),
     QT_TRANSLATE_NOOP("OutputWatch", "A recording is running")},
};
static_assert(OutputSlotStream == 0 && OutputSlotRecord == 1);

/// Texts about one target; "%1" is its name, or the seconds until the next try.
constexpr const char* kTargetLost = QT_TRANSLATE_NOOP("OutputWatch", "%1 lost");
constexpr const char* kTargetFailed = QT_TRANSLATE_NOOP("OutputWatch", "%1 failed");
constexpr const char* kNextTry = QT_TRANSLATE_NOOP("OutputWatch", "next try in %1 s");

constexpr const char* kUnreadable = QT_TRANSLATE_NOOP("OutputWatch", "Recording cannot be read back");

QString text(const char* source) {
  return QCoreApplication::translate("OutputWatch", source);
}

/// Joins the parts that are not empty.
QString joined(const QStringList& parts, const QString& separator) {
  QStringList filled = parts;
  filled.removeAll(QString());
  return filled.join(separator);
}

/// "HTTP lost: connection refused, next try in 5 s".
QString downText(const tagKorviaShowTargetReport& target) {
  const bool isLost = target.state == KorviaShowTargetState::Lost;
  const QString state = text(isLost ? kTargetLost : kTargetFailed).arg(target.name);
  const QString next =
      isLost && target.retrySeconds > 0 ? text(kNextTry).arg(target.retrySeconds) : QString();
  return joined({joined({state, target.reason}, QStringLiteral(": ")), next}, QStringLiteral(", "));
}

}  // namespace

OutputWatch::OutputWatch(const StatisticsFetch* statistics, OutputSwitches* switches, GOutputNotice* notice,
                         const tagKorviaSarnhawkConfig* config)
    : _statistics(statistics), _switches(switches), _notice(notice), _config(config) {
  QObject::connect(_notice, &QPushButton::clicked, _notice, [this] { clickAway(); });
}

void OutputWatch::onWorkTick() {
  for (int slot = 0; slot < kSlots; ++slot) {
    // Until the engine has answered, the report may still describe the previous output.
    if (_switches->isWaiting(slot))
      continue;
    const tagKorviaShowOutputReport& report = _statistics->figures().outputs[static_cast<std::size_t>(slot)];
    if (report.state == KorviaShowOutputState::Failed)
      _switches->springBack(slot);
    tell(slot, report);
  }
  tellDevices();
  showNotice();
}

void OutputWatch::onStart(int slot) {
  _told[static_cast<std::size_t>(slot)] = {};
  showNotice();
}

void OutputWatch::tell(int slot, const tagKorviaShowOutputReport& report) {
  const OutputTexts& texts = kTexts[slot];
  const QString separator = QStringLiteral(" - ");
  const QString fileName = QFileInfo(report.fileName).fileName();
  const QString lost =
      report.droppedFrames > 0 ? text(texts.framesLost).arg(report.droppedFrames) : QString();
  Told& told = _told[static_cast<std::size_t>(slot)];
  told.isReported = true;
  told.hasLostFrames = report.droppedFrames > 0;
  const bool goesOn =
      report.state == KorviaShowOutputState::Starting || report.state == KorviaShowOutputState::Running;
  const QList<tagKorviaShowTargetReport> down =
      noteDown(told, goesOn ? report.targets : QList<tagKorviaShowTargetReport>());
  if (report.state == KorviaShowOutputState::Failed) {
    const QString failed = joined({text(texts.failed), report.reason}, QStringLiteral(": "));
    told.news = News::Failed;
    told.line = joined({failed, fileName}, separator);
    told.details = joined({failed, report.fileName, lost}, QStringLiteral("\n"));
  } else if (!report.warning.isEmpty() && report.warning != told.warningClickedAway) {
    const QString unreadable = joined({text(kUnreadable), report.warning}, QStringLiteral(": "));
    told.news = News::Unreadable;
    told.warning = report.warning;
    told.line = joined({unreadable, fileName}, separator);
    told.details = joined({unreadable, report.fileName, lost}, QStringLiteral("\n"));
  } else if (!down.isEmpty()) {
    tellDown(told, down, lost);
  } else if (!lost.isEmpty()) {
    told.news = News::FramesLost;
    told.line = joined({lost, fileName}, separator);
    told.details = joined({lost, report.fileName}, QStringLiteral("\n"));
  } else if (told.news == News::TargetDown || told.news == News::Unreadable) {
    told.news = News::None;
  }
}

/// The virtual camera, NDI and SDI, which have no button and stay as long as they are enabled.
void OutputWatch::tellDevices() {
  const QList<tagKorviaShowTargetReport> down = noteDown(_devices, _statistics->figures().deviceOutputs);
  if (down.isEmpty())
    _devices.news = News::None;
  else
    tellDown(_devices, down, QString());
}

void OutputWatch::tellDown(Told& told, const QList<tagKorviaShowTargetReport>& down, const QString& lost) {
  QStringList lines;
  for (const tagKorviaShowTargetReport& target : down)
    lines.append(downText(target));
  told.news = News::TargetDown;
  told.line = lines.join(QStringLiteral(" | "));
  told.details = joined({lines.join(QLatin1Char('\n')), lost}, QStringLiteral("\n"));
}

/// Notes the targets that are lost or failed. Returns those to tell of, the worst one first: none while the
/// operator has clicked all of them away.
QList<tagKorviaShowTargetReport> OutputWatch::noteDown(
    Told& told, const QList<tagKorviaShowTargetReport>& targets) const {
  told.down.clear();
  QList<tagKorviaShowTargetReport> down;
  for (const tagKorviaShowTargetReport& target : TargetText::worstFirst(targets)) {
    if (_config->enableOutputWarning == 0 || !TargetText::isDown(target))
      continue;
    told.down.append(target.name);
    down.append(target);
  }
  // A target that came up again and goes down once more is news.
  const auto isUp = [&told](const QString& name) { return !told.down.contains(name); };
  auto& clicked = told.downClickedAway;
  clicked.erase(std::remove_if(clicked.begin(), clicked.end(), isUp), clicked.end());
  return clicked.size() == told.down.size() ? QList<tagKorviaShowTargetReport>() : down;
}

void OutputWatch::showNotice() {
  QStringList lines;
  QStringList details;
  // The recording comes first, because a lost recording cannot be repeated.
  for (const Told* told : {&_told[OutputSlotRecord], &_told[OutputSlotStream], &_devices}) {
    if (told->news <= told->clickedAway)
      continue;
    lines.append(told->line);
    details.append(told->details);
  }
  if (lines.isEmpty())
    _notice->hide();
  else
    _notice->present(lines.join(QStringLiteral(" | ")), details.join(QLatin1Char('\n')));
}

void OutputWatch::clickAway() {
  for (Told* told : {&_told[OutputSlotRecord], &_told[OutputSlotStream], &_devices}) {
    told->downClickedAway = told->down;
    if (told->news == News::Unreadable)
      told->warningClickedAway = told->warning;
    if (told->news == News::TargetDown || told->news == News::Unreadable)
      told->news = told->hasLostFrames ? News::FramesLost : News::None;
    told->clickedAway = std::max(told->clickedAway, told->news);
  }
  showNotice();
}

bool OutputWatch::isRunning(int slot) const {
  const tagKorviaShowEngineFigures& figures = _statistics->figures();
  const auto place = static_cast<std::size_t>(slot);
  if (_told[place].isReported && figures.outputs[place].state == KorviaShowOutputState::Failed)
    return false;
  // The figures are up to a second old, so the button counts too: an output may have begun since.
  return _switches->isOn(slot) || (slot == OutputSlotRecord ? figures.recording : figures.streaming);
}

QString OutputWatch::runningText() const {
  QStringList lines;
  if (isRunning(OutputSlotRecord)) {
    const QString fileName = _told[OutputSlotRecord].isReported
                                 ? _statistics->figures().outputs[OutputSlotRecord].fileName
                                 : QString();
    lines.append(joined({text(kTexts[OutputSlotRecord].running), QFileInfo(fileName).fileName()},
                        QStringLiteral(": ")));
  }
  if (isRunning(OutputSlotStream))
    lines.append(joined(
        {text(kTexts[OutputSlotStream].running), _switches->streamTargets().join(QStringLiteral(", "))},
        QStringLiteral(": ")));
  return lines.join(QLatin1Char('\n'));
}
