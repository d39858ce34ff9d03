#include "console/OutputWatch.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "console/GOutputNotice.h"
#include "console/OutputSwitches.h"
#include "console/StatisticsFetch.h"
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

QString text(const char* source) {
  return QCoreApplication::translate("OutputWatch", source);
}

/// Joins the parts that are not empty.
QString joined(const QStringList& parts, const QString& separator) {
  QStringList filled = parts;
  filled.removeAll(QString());
  return filled.join(separator);
}

}  // namespace

OutputWatch::OutputWatch(const StatisticsFetch* statistics, OutputSwitches* switches, GOutputNotice* notice)
    : _statistics(statistics), _switches(switches), _notice(notice) {
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
  if (report.state == KorviaShowOutputState::Failed) {
    const QString failed = joined({text(texts.failed), report.reason}, QStringLiteral(": "));
    told.news = News::Failed;
    told.line = joined({failed, fileName}, separator);
    told.details = joined({failed, report.fileName, lost}, QStringLiteral("\n"));
  } else if (!lost.isEmpty()) {
    told.news = News::FramesLost;
    told.line = joined({lost, fileName}, separator);
    told.details = joined({lost, report.fileName}, QStringLiteral("\n"));
  }
}

void OutputWatch::showNotice() {
  QStringList lines;
  QStringList details;
  // The recording comes first, because a lost recording cannot be repeated.
  for (const int slot : {OutputSlotRecord, OutputSlotStream}) {
    const Told& told = _told[static_cast<std::size_t>(slot)];
    if (told.news <= told.clickedAway)
      continue;
    lines.append(told.line);
    details.append(told.details);
  }
  if (lines.isEmpty())
    _notice->hide();
  else
    _notice->present(lines.join(QStringLiteral(" | ")), details.join(QLatin1Char('\n')));
}

void OutputWatch::clickAway() {
  for (Told& told : _told)
    told.clickedAway = told.news;
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
