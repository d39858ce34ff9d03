#include "output/OutputStatus.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <QStringList>
#include <QStyle>
#include <algorithm>

#include "console/OutputSwitches.h"
#include "console/StatisticsFetch.h"
#include "output/TargetText.h"
#include "tagKorviaShowOutputParam.h"
#include "ui_KorviaSarnhawk.h"

namespace {

/// Below this the room on the disk is marked.
constexpr qint64 kLittleRoomSeconds = 600;

/// The style sheet gives labels with this property another colour.
constexpr const char* kAlertProperty = "alert";

QString text(const char* source) {
  return QCoreApplication::translate("OutputStatus", source);
}

void setAlert(QLabel* label, bool isAlert) {
  if (label->property(kAlertProperty).toBool() == isAlert)
    return;
  label->setProperty(kAlertProperty, isAlert);
  // The style sheet looks at properties only when a widget is polished.
  label->style()->unpolish(label);
  label->style()->polish(label);
}

bool isRunning(const tagKorviaShowOutputReport& report) {
  return report.state == KorviaShowOutputState::Starting || report.state == KorviaShowOutputState::Running;
}

/// Of an output that does not tell of its targets.
QString stateText(const tagKorviaShowOutputReport& report) {
  return report.state == KorviaShowOutputState::Starting ? text("connecting") : text("up");
}

}  // namespace

OutputStatus::OutputStatus(const StatisticsFetch* statistics, const OutputSwitches* switches,
                           Ui::KorviaSarnhawk& ui)
    : _statistics(statistics),
      _switches(switches),
      _recordLabel(ui._recordStatusLabel),
      _streamLabel(ui._streamStatusLabel) {
  _recordLabel->hide();
  _streamLabel->hide();
}

void OutputStatus::onWorkTick() {
  const auto& [stream, record] = _statistics->figures().outputs;
  // Until the engine has answered, the report may still describe the previous output.
  if (!_switches->isWaiting(OutputSlotRecord))
    showRecord(record);
  if (!_switches->isWaiting(OutputSlotStream))
    showStream(stream);
}

void OutputStatus::showRecord(const tagKorviaShowOutputReport& report) {
  _recordLabel->setVisible(isRunning(report));
  if (!isRunning(report))
    return;
  const QString state = recordText(report);
  _recordLabel->setText(state);
  _recordLabel->setToolTip(report.fileName.isEmpty() ? state : state + QLatin1Char('\n') + report.fileName);
  setAlert(_recordLabel, report.roomSeconds >= 0 && report.roomSeconds < kLittleRoomSeconds);
}

void OutputStatus::showStream(const tagKorviaShowOutputReport& report) {
  _streamLabel->setVisible(isRunning(report));
  if (!isRunning(report))
    return;
  _streamLabel->setText(streamText(report));
  _streamLabel->setToolTip(streamDetails(report));
  setAlert(_streamLabel, std::any_of(report.targets.begin(), report.targets.end(), TargetText::isDown));
}

QString OutputStatus::recordText(const tagKorviaShowOutputReport& report) {
  const QString size = QLocale::c().formattedDataSize(report.writtenBytes, 1, QLocale::DataSizeSIFormat);
  const QString written = QStringLiteral("%1   %2").arg(TargetText::duration(report.writtenMs / 1000), size);
  QStringList rest;
  if (report.roomSeconds >= 0)
    rest.append(text("%1 min free").arg(report.roomSeconds / 60));
  if (report.verifiedMs >= 0)
    rest.append(text("verified to %1").arg(TargetText::duration(report.verifiedMs / 1000)));
  return rest.isEmpty() ? written : written + QLatin1Char('\n') + rest.join(QStringLiteral(", "));
}

QString OutputStatus::streamText(const tagKorviaShowOutputReport& report) {
  if (report.targets.isEmpty())
    return stateText(report);
  if (report.targets.size() == 1)
    return TargetText::state(report.targets.constFirst());
  QStringList texts;
  for (const tagKorviaShowTargetReport& target : TargetText::worstFirst(report.targets))
    texts.append(QStringLiteral("%1: %2").arg(target.name, TargetText::state(target)));
  return texts.join(QStringLiteral(" | "));
}

QString OutputStatus::streamDetails(const tagKorviaShowOutputReport& report) {
  QStringList lines;
  for (const tagKorviaShowTargetReport& target : TargetText::worstFirst(report.targets)) {
    QString line = QStringLiteral("%1: %2").arg(target.name, TargetText::state(target));
    if (!target.reason.isEmpty())
      line += QStringLiteral(" (%1)").arg(target.reason);
    else if (target.state == KorviaShowTargetState::Up)
      line += text(", %1 kbit/s").arg(qRound(target.bitrate));
    lines.append(line);
  }
  return lines.isEmpty() ? stateText(report) : lines.join(QLatin1Char('\n'));
}
