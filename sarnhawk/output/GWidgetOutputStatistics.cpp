#include "output/GWidgetOutputStatistics.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <algorithm>

#include "KorviaCommonUtil.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/StatisticsFetch.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "output/GBitratePlotChart.h"
#include "ui_GWidgetOutputStatistics.h"

namespace {

using Form = Ui::GWidgetOutputStatistics;
using Block = tagKorviaOutputStatisticsBlock;
using Item = tagKorviaShowOutputItem;

/// The labels of a muxer; by slot.
constexpr struct {
  QLabel* Form::*fps;
  QLabel* Form::*audioRate;
  QLabel* Form::*videoBitrate;
  QLabel* Form::*audioBitrate;
  QLabel* Form::*drift;
  QLabel* Form::*delay;
  QLabel* Form::*frameType;
} kMuxers[] = {
    {&Form::_videoMuxFpsLabel_0, &Form::_audioMuxSampleRateLabel_0, &Form::_videoMuxBitrateLabel_0,
     &Form::_audioMuxBitrateLabel_0, &Form::_VAMuxDriftLabel_0, &Form::_vDelayDriftLabel_0,
     &Form::_videoFrameTypeLabel_0},
    {&Form::_videoMuxFpsLabel_1, &Form::_audioMuxSampleRateLabel_1, &Form::_videoMuxBitrateLabel_1,
     &Form::_audioMuxBitrateLabel_1, &Form::_VAMuxDriftLabel_1, &Form::_vDelayDriftLabel_1,
     &Form::_videoFrameTypeLabel_1},
};

/// A line of the targets: its widget is enabled by a flag of the item of its slot.
constexpr struct {
  int slot;
  QWidget* Form::*line;
  QLabel* Form::*bitrate;
  quint8 Item::*enable;
  float (*value)(const Block&);
} kTargets[] = {
    {OutputSlotStream, &Form::_rtmpOutputTipWidget_00, &Form::_rtmpOutputBitrateLabel_00, &Item::rtmp0Enable,
     [](const Block& block) { return block.rtmp[0].bitrate; }},
    {OutputSlotStream, &Form::_rtmpOutputTipWidget_01, &Form::_rtmpOutputBitrateLabel_01, &Item::rtmp1Enable,
     [](const Block& block) { return block.rtmp[1].bitrate; }},
    {OutputSlotStream, &Form::_rtmpOutputTipWidget_02, &Form::_rtmpOutputBitrateLabel_02,
     &Item::rtmpLocalEnable, [](const Block& block) { return block.rtmp[2].bitrate; }},
    {OutputSlotStream, &Form::_httpOutputTipWidget_0, &Form::_httpOutputBitrateLabel_0, &Item::httpEnable,
     [](const Block& block) { return block.http.bitrate; }},
    {OutputSlotStream, &Form::_hlsOutputTipWidget_0, &Form::_hlsOutputBitrateLabel_0, &Item::hlsEnable,
     [](const Block& block) { return block.hls.bitrate; }},
    {OutputSlotStream, &Form::_udpOutputTipWidget_0, &Form::_udpOutputBitrateLabel_0, &Item::udpEnable,
     [](const Block& block) { return block.udp.bitrate; }},
    {OutputSlotRecord, &Form::_fileOutputTipWidget_0, &Form::_recordOutputBitrateLabel_0, &Item::recordActive,
     [](const Block& block) { return block.record.bitrate; }},
};

const Block& blockOf(const tagKorviaOutputStatistics& outputs, int slot) {
  return outputs.blocks[static_cast<std::size_t>(slot)];
}

/// Rates come for a millisecond and are shown for a second.
QString ratePerSecond(float rate) {
  return QString::number(static_cast<double>(rate) * 1000.0, 'g', 6);
}

QString frameTypeText(const Block& block) {
  // The text may fill all its places.
  auto text = block.frameType;
  text.back() = 0;
  return QString::fromUtf8(text.data());
}

}  // namespace

GWidgetOutputStatistics::GWidgetOutputStatistics(IKorviaSarnhawkPriv* priv, QWidget* parent)
    : GToolWindow(parent),
      _ui(std::make_unique<Ui::GWidgetOutputStatistics>()),
      _priv(priv),
      _localAddress(KorviaCommonUtil::getIp()),
      _chart(new GBitratePlotChart(this)) {
  _ui->setupUi(this);
  createTable();
  _ui->_bitrateStatisticsLayout->addWidget(_chart);
  _chart->setLegends({tr("Net Stream"), tr("Record")});
  refreshTips();
}

GWidgetOutputStatistics::~GWidgetOutputStatistics() = default;

void GWidgetOutputStatistics::createTable() {
  QTableWidget* table = _ui->_mediaSourceTableWidget;
  table->setColumnCount(ColumnCount);
  table->setHorizontalHeaderLabels(
      {tr("Index"), tr("Video Size"), tr("Video Fps"), tr("Audio Rate"), tr("V-A Drift"), tr("Source")});
  for (const auto& [column, width] : kColumnWidths)
    table->setColumnWidth(column, width);
  table->horizontalHeader()->setSectionResizeMode(Source, QHeaderView::Stretch);
  const int channels = std::min(_priv->getConfig()->engineInfo.mediaChannelCount, kMediaChannelMax);
  table->setRowCount(channels);
  for (int index = 0; index < channels; ++index) {
    const QString texts[] = {QString::number(index), QStringLiteral("0 X 0"), QStringLiteral("0"),
                             QStringLiteral("0"),    QStringLiteral("0"),     QString()};
    Row row;
    for (int column = 0; column < ColumnCount; ++column) {
      const auto place = static_cast<std::size_t>(column);
      row[place] = new QTableWidgetItem(texts[place]);
      table->setItem(index, column, row[place]);
    }
    _rows.push_back(row);
  }
}

void GWidgetOutputStatistics::onWorkTick() {
  if (_statistics && _priv->getEngine() && isVisible())
    updateStatistics(_statistics->outputs(), _statistics->sources().data());
}

void GWidgetOutputStatistics::updateStatistics(const tagKorviaOutputStatistics& outputs,
                                               const tagKorviaShowSourceStatisticsItem* sources) {
  updateSources(sources);
  updateMuxers(outputs);
  updateTargets(outputs);
  updateChart(outputs);
}

void GWidgetOutputStatistics::updateSources(const tagKorviaShowSourceStatisticsItem* sources) {
  for (std::size_t index = 0; index < _rows.size(); ++index) {
    const tagKorviaShowSourceStatisticsItem& source = sources[index];
    // The record is packed, so its fields are read by value.
    const tagKorviaVideoFormat format = _priv->getConfig()->channels[index].format.video;
    const qint32 width = format.secondWidth;
    const qint32 height = format.secondHeight;
    const Row& row = _rows[index];
    row[Index]->setText(QString::number(index));
    row[VideoSize]->setText(QStringLiteral("%1 X %2").arg(width).arg(height));
    row[VideoFps]->setText(ratePerSecond(source.videoRate));
    row[AudioRate]->setText(ratePerSecond(source.audioRate));
    row[Drift]->setText(QString::number(source.videoAudioDrift));
    row[Source]->setText(source.description);
  }
}

void GWidgetOutputStatistics::updateMuxers(const tagKorviaOutputStatistics& outputs) {
  for (const int slot : {OutputSlotStream, OutputSlotRecord}) {
    const Block& block = blockOf(outputs, slot);
    const auto& labels = kMuxers[static_cast<std::size_t>(slot)];
    ((*_ui).*labels.fps)->setText(tr("%1 fps").arg(static_cast<double>(block.videoFps)));
    ((*_ui).*labels.audioRate)->setText(tr("%1 s").arg(static_cast<double>(block.audioRate)));
    ((*_ui).*labels.videoBitrate)->setText(tr("%1 kpbs").arg(static_cast<double>(block.videoBitrate)));
    ((*_ui).*labels.audioBitrate)->setText(tr("%1 kpbs").arg(static_cast<double>(block.audioBitrate)));
    ((*_ui).*labels.drift)->setText(tr("%1 ms").arg(block.videoAudioDrift));
    ((*_ui).*labels.delay)->setText(tr("%1 ms").arg(block.encodeDelay));
    ((*_ui).*labels.frameType)->setText(frameTypeText(block));
  }
}

void GWidgetOutputStatistics::updateTargets(const tagKorviaOutputStatistics& outputs) {
  for (const auto& target : kTargets) {
    const float bitrate = target.value(blockOf(outputs, target.slot));
    ((*_ui).*target.bitrate)->setText(tr("%1 kpbs").arg(static_cast<double>(bitrate)));
  }
}

void GWidgetOutputStatistics::updateChart(const tagKorviaOutputStatistics& outputs) {
  QList<int> values;
  for (const int slot : {OutputSlotStream, OutputSlotRecord}) {
    const Block& block = blockOf(outputs, slot);
    values << static_cast<int>(block.videoBitrate) << static_cast<int>(block.audioBitrate);
  }
  _chart->update(values);
}

void GWidgetOutputStatistics::refreshTips() {
  const tagKorviaSarnhawkConfig* config = _priv->getConfig();
  const auto& items = config->outputParam.items;
  for (const auto& target : kTargets)
    ((*_ui).*target.line)->setEnabled(items[static_cast<std::size_t>(target.slot)].*target.enable != 0);
  const Item& net = items[OutputSlotStream];
  const auto& ip = _localAddress;
  _ui->_rtmpOutputTipLineEdit_00->setText(net.rtmp0Url);
  _ui->_rtmpOutputTipLineEdit_01->setText(net.rtmp1Url);
  _ui->_rtmpOutputTipLineEdit_02->setText(QStringLiteral("rtmp://%1:1935/live%2").arg(ip, net.rtmpLocalPath));
  _ui->_httpOutputTipLineEdit_0->setText(
      QStringLiteral("http://%1:%2%3").arg(ip, QString::number(net.httpPort), net.httpPath));
  _ui->_hlsOutputTipLineEdit_0->setText(
      QStringLiteral("http://%1:%2%3/index.m3u8").arg(ip, QString::number(config->httpPort), net.hlsPath));
  _ui->_udpOutputTipLineEdit_0->setText(
      QStringLiteral("udp://@%1:%2").arg(net.udpAddress, QString::number(net.udpPort)));
  _ui->_recordOutputTipLineEdit_0->setText(items[OutputSlotRecord].recordPath);
  const auto tips = _ui->_statisticsCodecTab_0->findChildren<QLineEdit*>();
  for (QLineEdit* tip : tips)
    tip->setCursorPosition(0);
}

void GWidgetOutputStatistics::closeEvent(QCloseEvent* event) {
  event->ignore();
  hide();
}
